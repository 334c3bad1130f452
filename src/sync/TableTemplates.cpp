#include "sync/TableTemplates.h"

#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"
#include "sync/TableSelection.h"

#include <string>

namespace {

/// A line of a template, and the choice that it holds.
template <typename Choice>
struct TemplateLine {
    MessageId Group;
    bool Choice::*Chosen;
};

constexpr TemplateLine<UploadChoice> UploadLines[] = {
    {msg::UploadOrders, &UploadChoice::Orders},       {msg::UploadAudits, &UploadChoice::Audits},
    {msg::TablesHHTotals, &UploadChoice::HHTotals},   {msg::UploadPrintSpooler, &UploadChoice::PrintSpooler},
    {msg::TablesCustomers, &UploadChoice::Customers}, {msg::TablesItems, &UploadChoice::Items}};
constexpr TemplateLine<DownloadChoice> DownloadLines[] = {{msg::TablesCustomers, &DownloadChoice::Customers},
                                                          {msg::TablesItems, &DownloadChoice::Items},
                                                          {msg::TablesSetup, &DownloadChoice::Setup}};
constexpr TemplateLine<ClearChoice> ClearLines[] = {{msg::TablesOrders, &ClearChoice::Orders},
                                                    {msg::TablesAudits, &ClearChoice::Audits},
                                                    {msg::TablesHHTotals, &ClearChoice::HHTotals}};

/// Of the template of a clearing on the PC, in the order of the groups.
constexpr MessageId ClearPCLines[ClearGroups] = {
    msg::TablesOrders,      msg::TablesAudits, msg::TablesHHTotals, msg::TablesBarIn,  msg::TablesComp,
    msg::TablesCustomersPC, msg::TablesHelp,   msg::TablesItems,    msg::TablesPrint,  msg::TablesSetupPC,
    msg::TablesSTax,        msg::TablesPay,    msg::TablesLinks,    msg::TablesTotalPC};

template <typename Choice, std::size_t Count>
void Read(std::string_view path, Choice& choice, const TemplateLine<Choice> (&lines)[Count]) {
    TextReader file(path, TextReader::OwnFile);
    Choice read = choice;
    for (std::string line; file.ReadLine(line);) {
        for (const auto& [group, chosen] : lines) {
            if (const auto on = TurnsOn(line, group)) read.*chosen = *on;
        }
    }
    choice = read;
}

template <typename Choice, std::size_t Count>
void Write(std::string_view path, const Choice& choice, const TemplateLine<Choice> (&lines)[Count]) {
    SafeFile file(path);
    for (const auto& [group, chosen] : lines) file.WriteLine(KeyOf(group) + (choice.*chosen ? "=1" : "=0"));
    file.Commit();
}

} // namespace

void ReadTemplate(std::string_view path, UploadChoice& choice) {
    Read(path, choice, UploadLines);
}

void ReadTemplate(std::string_view path, DownloadChoice& choice) {
    Read(path, choice, DownloadLines);
}

void ReadTemplate(std::string_view path, ClearChoice& choice) {
    Read(path, choice, ClearLines);
}

void ReadTemplate(std::string_view path, ClearPlan& plan) {
    TextReader file(path, TextReader::OwnFile);
    ClearPlan read = plan;
    for (std::string line; file.ReadLine(line);) {
        for (std::size_t group = 0; group < ClearGroups; ++group) {
            if (const auto on = TurnsOnByBeginning(line, ClearPCLines[group])) read.Chosen[group] = *on;
        }
    }
    plan = read;
}

void WriteTemplate(std::string_view path, const UploadChoice& choice) {
    Write(path, choice, UploadLines);
}

void WriteTemplate(std::string_view path, const DownloadChoice& choice) {
    Write(path, choice, DownloadLines);
}

void WriteTemplate(std::string_view path, const ClearChoice& choice) {
    Write(path, choice, ClearLines);
}

void WriteTemplate(std::string_view path, const ClearPlan& plan) {
    SafeFile file(path);
    for (std::size_t group = 0; group < ClearGroups; ++group)
        file.WriteLine(KeyOf(ClearPCLines[group]) + (plan.Chosen[group] ? "1" : "0"));
    file.Commit();
}
