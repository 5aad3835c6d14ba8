#include "console/Commands.h"

#include "anatomy/cAnatomicDescription.h"
#include "console/Chart.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

void ListLayouts(const Options& options) {
    const Database database(options);
    database
        .ListOf(
            "SELECT TCDicomId AS Layout, TCName AS Name, TCFullViewWidth AS Width, TCFullViewHeight AS "
            "Height, "
            "(SELECT count(*) FROM TemplateAttribute_T a WHERE a.TemplateID = c.TemplateID) AS Slots, "
            "TCComments "
            "AS Comments FROM TemplateCard_T c ORDER BY TCDicomId, TemplateID")
        .Print(options, "There are no layouts.");
}

void ShowLayout(const Options& options, Long number) {
    const Database database(options);
    const Ref<cTemplate> layout = New<cTemplate>();
    layout->GetTemplate(database.Con(), 0, number);
    if (number == 0 || layout->TCID == 0)
        throw UserError(fmt::format("there is no layout {}; see: oxclass layouts", number));
    if (!options.json) {
        std::map<Long, std::string> labels;
        for (const auto& slot : Each<cTemplateAttribute>(*layout->TemplateAttributes))
            labels[slot.TANumberInTemplate] = slot.TAADName;
        fmt::print("Layout {}: {}\n{}", number, Printable(layout->TCName), ChartOf(*layout, labels));
        return;
    }
    List list({{"frame", ""}, {"sequence", ""}, {"x", ""}, {"y", ""}, {"width", ""}, {"height", ""}, {"group", ""}});
    for (const auto& slot : Each<cTemplateAttribute>(*layout->TemplateAttributes))
        list.Add({slot.TANumberInTemplate, slot.TASequence, slot.TAPosX, slot.TAPosY, slot.TAWidth, slot.TAHeight,
                  slot.TAADName});
    list.Print(true, "");
}

void ListGroups(const Options& options) {
    const Database database(options);
    database
        .ListOf(
            "SELECT TGId AS \"Group\", Name, ADLaterality AS Side, ADAnaRegion AS Region, ADAnaRegionMod AS "
            "Modifier, ADPriStructure AS Teeth FROM StandardGroupName ORDER BY OrderNo, TGId")
        .Print(options, "There are no anatomic groups.");
}

void ShowGroup(const Options& options, Long number) {
    const Database database(options);
    const Ref<cAnatomicDescription> group = New<cAnatomicDescription>();
    group->LoadSGN(database.Con(), number);
    if (group->ID == 0) throw UserError(fmt::format("there is no group {}; see: oxclass anatomy", number));
    List list({{"group", "Group"},
               {"name", "Name"},
               {"side", "Side"},
               {"region", "Region"},
               {"modifier", "Modifier"},
               {"teeth", "Teeth"},
               {"comments", "Comments"}});
    list.Add({group->ADId, group->ADName, group->ADLaterality, group->ADAnaRegion, group->ADAnaRegionMod,
              group->GetAsString(), group->ADComments});
    list.Print(options.json, "");
}

}  // namespace

void AddLayouts(Program& program) {
    const auto number = std::make_shared<std::string>();
    auto* layouts = program.app.add_subcommand("layouts", "list the layouts, or draw one");
    layouts->add_option("LAYOUT", *number, "number of a layout");
    AddListOptions(program, layouts);
    layouts->footer("Example: oxclass layouts 6");
    layouts->callback([&program, number] {
        if (number->empty()) return ListLayouts(program.options);
        ShowLayout(program.options, NumberOf(*number, "a layout"));
    });
    auto* anatomy = program.app.add_subcommand("anatomy", "list the anatomic groups, or show one");
    anatomy->add_option("GROUP", *number, "number of a group");
    AddListOptions(program, anatomy);
    anatomy->footer("Example: oxclass anatomy 1");
    anatomy->callback([&program, number] {
        if (number->empty()) return ListGroups(program.options);
        ShowGroup(program.options, NumberOf(*number, "a group"));
    });
}

}  // namespace Console
