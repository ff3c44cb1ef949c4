// vmiFile: the catalogue parser. The catalogue is text: a header, a line
// starting with "-", then one record per line, fields separated by commas.
// The first field is the level: 1 and 2 name the groups, 3 describes one
// data file.
#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "archive/vmiReadObserver.h"
#include "archive/vmiVlkElement.h"

void vmiFile::proc_vlk()
{
    const vlk_outcome outcome = parse_vlk();
    if (observer_) {
        observer_->catalogue(vlk_name_, vlk_indx_, vlk_size_, outcome.found, outcome.separator,
                             catalogue_.first(), archive_);
        // An entry without bytes was refused when it was read.
        if (!outcome.found && vlk_size_ > 0)
            skip(vmiReadSkip(vmiSkipReason::catalogue_not_found, vlk_name_));
        else if (outcome.found && !outcome.separator)
            skip(vmiReadSkip(vmiSkipReason::no_separator, vlk_name_));
        else if (outcome.separator && !catalogue_.first())
            skip(vmiReadSkip(vmiSkipReason::no_records, vlk_name_));
    }
    // Without a separator line there are no records and no nodes.
    if (outcome.separator)
        fill_node();
}

vmiFile::vlk_outcome vmiFile::parse_vlk()
{
    vlk_outcome outcome;
    // Only the catalogue numbered 0 is read; another number finds nothing.
    vmiArchiveElement* e = archive_.get(vmiEntryKind::catalogue, 0);
    if (!e)
        return outcome;
    outcome.found = true;
    init_vlk(e->buf(), e->len());
    while (!is_vlk_end() && !is_vlk_char('-'))
        pass_vlk_str();
    if (!is_vlk_char('-'))
        return outcome;
    outcome.separator = true;
    pass_vlk_str();
    while (!is_vlk_end()) {
        const int level = get_vlk_int();
        if (level == 1 || level == 2) {
            catalogue_.add(proc_vlk_level1_2(level));
        } else if (level == 3) {
            catalogue_.add(proc_vlk_level3());
        } else if (is_vlk_char('\n')) {
            // An unknown level is passed over and the next field read as the
            // level; but at a line feed (an empty line, or a lone unknown
            // level) that would read the same empty field for ever, so the
            // line is skipped.
            pass_vlk_str();
        }
    }
    return outcome;
}

vmiVlkElement* vmiFile::proc_vlk_level1_2(const int& level)
{
    vmiVlkElement* e = new vmiVlkElement(level);
    e->name0(get_vlk_str());
    e->name1(get_vlk_str());
    pass_vlk_str();
    return e;
}

vmiVlkElement* vmiFile::proc_vlk_level3()
{
    vmiVlkElement* e = new vmiVlkElement(3);
    e->type1(get_vlk_int());
    e->indx(get_vlk_int());
    e->ref_indx(get_vlk_int());
    e->type2(get_vlk_int());
    e->date(get_vlk_str());
    e->name1(get_vlk_str());
    get_vlk_int();   // a number the records do not keep
    e->comment(get_vlk_str());
    get_vlk_int();   // a number the records do not keep
    e->data_indx(get_vlk_int());
    pass_vlk_str();
    return e;
}

void vmiFile::init_vlk(char* buf, const int& len)
{
    vlk_pos_ = buf;
    vlk_end_ = buf && len > 0 ? buf + len : buf;
}

char* vmiFile::get_vlk_el(int& len)
{
    // A field runs to a comma, which it consumes, or to a line feed, which it
    // leaves: every further field of that line is then empty.
    char* field = vlk_pos_;
    char* p = vlk_pos_;
    while (p < vlk_end_ && *p != ',' && *p != '\n')
        ++p;
    len = static_cast<int>(p - field);
    vlk_pos_ = (p < vlk_end_ && *p == ',') ? p + 1 : p;
    return field;
}

int vmiFile::get_vlk_int()
{
    int len = 0;
    char* field = get_vlk_el(len);
    return get_text_int(field, len);
}

utString vmiFile::get_vlk_str()
{
    int len = 0;
    char* field = get_vlk_el(len);
    return utString(field, static_cast<std::size_t>(len));
}

void vmiFile::pass_vlk(const int& n)
{
    if (n <= 0)
        return;
    vlk_pos_ = (n >= vlk_end_ - vlk_pos_) ? vlk_end_ : vlk_pos_ + n;
}

void vmiFile::pass_vlk_str()
{
    while (vlk_pos_ < vlk_end_ && *vlk_pos_ != '\n')
        ++vlk_pos_;
    if (vlk_pos_ >= vlk_end_)
        return;
    // A carriage return after the line feed goes with it; one before it
    // stays part of the line's last field.
    pass_vlk(vlk_end_ - vlk_pos_ > 1 && vlk_pos_[1] == '\r' ? 2 : 1);
}

int vmiFile::is_vlk_char(const char& c)
{
    return vlk_pos_ < vlk_end_ && *vlk_pos_ == c ? 1 : 0;
}

int vmiFile::is_vlk_end()
{
    return vlk_pos_ >= vlk_end_ ? 1 : 0;
}
