#include "cli/PluginIdentity.h"

#include "host/intcoSet.h"
#include "host/qorabsLibBase.h"
#include "host/utStringcoSet.h"

namespace {

std::optional<std::string> text(const char* s)
{
    if (!s) return std::nullopt;
    return std::string(s);
}

} // namespace

PluginIdentity PluginIdentity::of(const qorabsLibBase& library)
{
    PluginIdentity id;
    id.library_name = text(library.library_name());
    id.format_name = text(library.format_name());
    id.option = text(library.option());
    id.file_filter = text(library.file_filter());
    id.database_number = library.database_number();
    if (const qorabsTranslatorCategoryPtr category = library.translator_category())
        id.translator_category = category->name().str();
    intcoSet types;
    library.add_file_types(types);
    id.file_types.assign(types.begin(), types.end());
    utStringcoSet extensions;
    library.add_extensions(extensions);
    for (const utString& e : extensions) id.extensions.push_back(e.str());
    return id;
}
