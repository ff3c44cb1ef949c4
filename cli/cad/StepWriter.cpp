#include "cli/cad/StepWriter.h"

#include <STEPCAFControl_Writer.hxx>
#include <STEPControl_StepModelType.hxx>
#include <STEPControl_Writer.hxx>
#include <Standard_Failure.hxx>
#include <StepData_Protocol.hxx>
#include <StepData_StepModel.hxx>
#include <StepData_StepWriter.hxx>

#include "cli/cad/OcctScene.h"

std::string StepWriter::write(const Scene& scene, double scale, bool meshes, std::ostream& out)
{
    try {
        OcctScene::Document d = OcctScene::document(scene, scale, meshes);
        if (d.shapes == 0) return meshes ? "no curve or mesh to write" : "no curve to write";
        STEPCAFControl_Writer writer;
        writer.SetNameMode(true);
        if (!writer.Transfer(d.doc, STEPControl_AsIs)) return "Open CASCADE could not transfer the shapes";
        const Handle(StepData_StepModel) model = writer.ChangeWriter().Model();
        const Handle(StepData_Protocol) protocol = Handle(StepData_Protocol)::DownCast(model->Protocol());
        if (protocol.IsNull()) return "Open CASCADE gave no STEP protocol";
        // Seventeen significant digits: every number reads back as the
        // double it was (the writer's own twelve decimals round knots).
        StepData_StepWriter step(model);
        step.FloatWriter().SetFormat(OcctScene::exact_real_format);
        step.FloatWriter().SetZeroSuppress(false);
        step.SendModel(protocol);
        return step.Print(out) ? "" : "Open CASCADE could not write STEP";
    } catch (const Standard_Failure& e) {
        return std::string("Open CASCADE failed: ") + e.GetMessageString();
    }
}
