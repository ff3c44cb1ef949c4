#include "cli/cad/IgesWriter.h"

#include <IGESCAFControl_Writer.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESData_IGESModel.hxx>
#include <IGESData_IGESWriter.hxx>
#include <IGESData_Protocol.hxx>
#include <Standard_Failure.hxx>

#include "cli/cad/OcctScene.h"

std::string IgesWriter::write(const Scene& scene, double scale, bool meshes, std::ostream& out)
{
    try {
        OcctScene::Document d = OcctScene::document(scene, scale, meshes);
        if (d.shapes == 0) return meshes ? "no curve or mesh to write" : "no curve to write";
        IGESControl_Controller::Init();
        IGESCAFControl_Writer writer;
        writer.SetNameMode(true);
        if (!writer.Transfer(d.doc)) return "Open CASCADE could not transfer the shapes";
        writer.ComputeModel();
        const Handle(IGESData_IGESModel) model = writer.Model();
        const Handle(IGESData_Protocol) protocol = Handle(IGESData_Protocol)::DownCast(model->Protocol());
        if (protocol.IsNull()) return "Open CASCADE gave no IGES protocol";
        // Seventeen significant digits, as for STEP (the writer's own nine
        // would round every knot and control point).
        IGESData_IGESWriter iges(model);
        iges.FloatWriter().SetFormat(OcctScene::exact_real_format);
        iges.FloatWriter().SetZeroSuppress(false);
        iges.SendModel(protocol);
        return iges.Print(out) ? "" : "Open CASCADE could not write IGES";
    } catch (const Standard_Failure& e) {
        return std::string("Open CASCADE failed: ") + e.GetMessageString();
    }
}
