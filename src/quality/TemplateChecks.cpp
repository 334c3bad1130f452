#include "quality/TemplateChecks.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportTemplate.h"
#include "sync/TableSelection.h"
#include "sync/UnattendedSettings.h"

#include <algorithm>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>

namespace {

/// What a template check has found: templates, and the files that a repair would change.
struct Found {
    std::string Names; ///< code page 1252, parted by ListSeparator
    std::vector<std::string> Files;

    void Add(const std::string& folder, const std::string& file) {
        AddTo(Names, PathToName(file));
        Files.push_back(folder + file);
    }

    static void AddTo(std::string& list, std::string_view name) {
        if (!list.empty()) list += ListSeparator;
        list += name;
    }
};

/// Whose templates a check looks at.
struct Subject {
    MessageId Group;
    std::string_view Target;
    MessageId Label; ///< before the list

    /// Adds a row when something was found; `more` goes below the list.
    void Report(ProblemList& problems, const Found& found, MessageId problem, MessageId issue,
                MessageId correction, const Text& more = {}) const {
        if (found.Names.empty()) return;
        ProblemRow row;
        row.Severity = Severity::Warn;
        row.Group = Group;
        row.Problem = problem;
        row.Issue = Lines(issue, Words(Label, Text::Value(std::string_view(found.Names))));
        if (!more.IsEmpty()) row.Issue = Lines(row.Issue, more);
        row.Correction = correction;
        row.Target = Target;
        row.List = found.Names;
        row.Files = found.Files;
        problems.Add(std::move(row));
    }
};

/// The lines of a text file, as far as they can be read.
std::vector<std::string> LinesOf(const std::string& path) {
    std::vector<std::string> lines;
    try {
        TextReader file(path, TextReader::OwnFile);
        for (std::string line; file.ReadLine(line);) lines.push_back(line);
    } catch (const RunTimeFailure&) {
        // What it would do is what could be read of it.
    }
    return lines;
}

bool SelectsSomething(const std::string& path, std::span<const MessageId> groups) {
    const std::vector<std::string> lines = LinesOf(path);
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return std::any_of(groups.begin(), groups.end(),
                           [&](MessageId group) { return SelectionValue(line, group) != 0; });
    });
}

void AddBlankSelections(Found& found, const std::string& folder, std::string_view extension,
                        std::initializer_list<MessageId> groups) {
    for (const std::string& file : FilesWithExtension(folder, extension)) {
        if (!SelectsSomething(folder + file, std::span(groups.begin(), groups.size())))
            found.Add(folder, file);
    }
}

/// A kind of template that another one names.
struct Kind {
    std::string Folder;
    std::vector<std::string_view> Extensions;

    /// Where a template of this name can stand, with or without its extension.
    std::vector<std::string> PlacesOf(std::string_view name) const {
        if (!IsPlainFileName(name)) return {};
        const std::string path = Folder + NameToPath(name);
        std::vector<std::string> places{path};
        for (const std::string_view extension : Extensions) places.push_back(path + std::string(extension));
        return places;
    }
};

/// Whether a template that is named is missing; adds the places where it may yet come to `places`.
bool IsMissing(std::string_view name, const Kind& kind, std::vector<std::string>& places) {
    const std::vector<std::string> own = kind.PlacesOf(name);
    if (std::any_of(own.begin(), own.end(), [](const std::string& path) { return FileExists(path); }))
        return false;
    places.insert(places.end(), own.begin(), own.end());
    return true;
}

/// The templates that an activity's lines name, leaving out "None". What is no plain file name is
/// taken as it stands.
std::vector<std::string> NamesIn(const std::string& path) {
    std::vector<std::string> names;
    for (const std::string& line : LinesOf(path)) {
        const std::string name = ActivityValue(line);
        if (!name.empty()) names.push_back(name);
    }
    return names;
}

} // namespace

void QCDownload(ProblemList& problems) {
    constexpr Subject subject{msg::GroupDownload, TemplateTarget::Download, msg::LabelTemplate};
    Found blank;
    AddBlankSelections(blank, Global.DownloadTemplates, ".dct",
                       {msg::TablesOrders, msg::TablesAudits, msg::TablesHHTotals});
    AddBlankSelections(
        blank, Global.DownloadTemplates, ".dst",
        {msg::TablesCustomers, msg::TablesItems, msg::TablesSetup, msg::TablesOrders, msg::TablesAudits});
    subject.Report(problems, blank, msg::ProblemBlankTemplate, msg::DownloadBlank,
                   msg::DownloadBlankCorrection);
}

void QCUpload(ProblemList& problems) {
    constexpr Subject subject{msg::GroupUpload, TemplateTarget::Upload, msg::LabelTemplate};
    Found blank;
    AddBlankSelections(blank, Global.UploadTemplates, ".ust",
                       {msg::UploadOrders, msg::UploadAudits, msg::TablesHHTotals, msg::UploadPrintSpooler,
                        msg::TablesCustomers, msg::TablesItems});
    subject.Report(problems, blank, msg::ProblemBlankTemplate, msg::UploadBlank, msg::UploadBlankCorrection);
}

void QCImport(ProblemList& problems) {
    constexpr Subject subject{msg::GroupImport, TemplateTarget::Import, msg::LabelTemplate};
    Found found;
    std::string importFiles;
    for (const TemplateKind kind : {TemplateKind::Cust, TemplateKind::Item}) {
        for (const std::string& file : FilesWithExtension(Global.ImportTemplates, TemplateExtension(kind))) {
            const std::string name = ReadImportTemplate(Global.ImportTemplates + file).FirstLine;
            const std::string path = Global.DataInPath + NameToPath(name);
            const bool isFileName = IsPlainFileName(name);
            if (isFileName && FileExists(path)) continue;
            if (!found.Names.empty()) importFiles += ListSeparator;
            importFiles += name;
            found.Add(Global.ImportTemplates, file);
            if (isFileName) found.Files.push_back(path); // it may come
        }
    }
    subject.Report(problems, found, msg::ProblemNoImportFile, msg::ImportFileGone,
                   msg::ImportFileGoneCorrection,
                   Words(msg::LabelImportFile, Text::Value(std::string_view(importFiles))));
}

void QCExport(ProblemList& problems) {
    constexpr Subject subject{msg::GroupExport, TemplateTarget::Export, msg::LabelTemplate};
    Found nameless;
    for (const std::string& file : FilesWithExtension(Global.ExportTemplates, ".xor")) {
        if (!ReadExportTemplate(Global.ExportTemplates + file).HasFileName)
            nameless.Add(Global.ExportTemplates, file);
    }
    subject.Report(problems, nameless, msg::ProblemNoImportFile, msg::ExportNameless,
                   msg::ExportNamelessCorrection);
}

void QCQB(ProblemList& problems) {
    constexpr Subject subject{msg::GroupQB, TemplateTarget::QuickButtons, msg::LabelTemplate};
    const std::pair<std::string_view, Kind> activities[] = {
        {ImportActivities, {Global.ImportTemplates, {".cst", ".itm"}}},
        {ExportActivities, {Global.ExportTemplates, {".xor"}}},
        {ClearPCActivities, {Global.ClearPCTemplates, {".pct"}}},
    };
    Found blank, gone;
    for (const auto& [extension, kind] : activities) {
        for (const std::string& file : FilesWithExtension(Global.QuickButtonTemplates, extension)) {
            const std::vector<std::string> names = NamesIn(Global.QuickButtonTemplates + file);
            if (names.empty()) blank.Add(Global.QuickButtonTemplates, file);
            bool anyGone = false;
            for (const std::string& name : names) anyGone |= IsMissing(name, kind, gone.Files);
            if (anyGone) gone.Add(Global.QuickButtonTemplates, file);
        }
    }
    subject.Report(problems, blank, msg::ProblemQBBlank, msg::QBBlank, msg::QBBlankCorrection);
    subject.Report(problems, gone, msg::ProblemTemplateGone, msg::QBTemplateGone,
                   msg::QBTemplateGoneCorrection);
}

void QCUA(ProblemList& problems) {
    constexpr Subject subject{msg::GroupUA, TemplateTarget::Unattended, msg::LabelUASetting};
    Found idle, nameless, gone;
    for (const std::string& file : FilesWithExtension(Global.UnattendedTemplates, UnattendedExtension)) {
        const UnattendedSettings settings = GlanceAtUnattendedSettings(Global.UnattendedTemplates + file);
        struct Action {
            bool IsOn;
            const std::string& Template;
            Kind Templates;
        };
        const Action actions[] = {
            {settings.Download, settings.DownloadTemplate, {Global.DownloadTemplates, {".dst"}}},
            {settings.Upload, settings.UploadTemplate, {Global.UploadTemplates, {".ust"}}},
            {settings.Clear, settings.ClearTemplate, {Global.DownloadTemplates, {".dct"}}},
        };
        bool anyOn = false, anyNameless = false, anyGone = false;
        for (const Action& action : actions) {
            if (!action.IsOn) continue;
            anyOn = true;
            if (action.Template.empty())
                anyNameless = true;
            else
                anyGone |= IsMissing(action.Template, action.Templates, gone.Files);
        }
        if (!anyOn) idle.Add(Global.UnattendedTemplates, file);
        if (anyNameless) nameless.Add(Global.UnattendedTemplates, file);
        if (anyGone) gone.Add(Global.UnattendedTemplates, file);
    }
    subject.Report(problems, idle, msg::ProblemNoAction, msg::UANoAction, msg::UACorrection);
    subject.Report(problems, nameless, msg::ProblemNoTemplates, msg::UANoTemplates, msg::UACorrection);
    subject.Report(problems, gone, msg::ProblemTemplateGone, msg::UATemplateGone,
                   msg::UATemplateGoneCorrection);
}
