#include "exchange/forms/SavedMappings.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/ImportTemplate.h"
#include "exchange/forms/Lists.h"
#include "platform/Convert.h"

#include <QComboBox>

#include <algorithm>
#include <utility>

SavedMappings::SavedMappings(Form& form, std::string folder, Deeds deeds)
    : FormPart(form),
      folder_(std::move(folder)),
      deeds_(std::move(deeds)),
      cboSettings(form.findChild<QComboBox*>(QStringLiteral("cboSettings"))) {}

void SavedMappings::List(std::string_view extension) {
    Use(extension);
    for (const std::string& name : NamesWithExtension(folder_, extension))
        cboSettings->addItem(PathToQt(name));
    cboSettings->setCurrentIndex(-1);
}

void SavedMappings::ListKinds(const std::vector<std::string_view>& extensions) {
    kinds_ = extensions;
    for (const std::string_view extension : kinds_) {
        for (const std::string& file : FilesWithExtension(folder_, extension))
            cboSettings->addItem(PathToQt(file));
    }
    cboSettings->setCurrentIndex(-1);
}

std::string SavedMappings::Name() const {
    return PathFromQt(cboSettings->currentText().trimmed());
}

std::string SavedMappings::File() const {
    const std::string name = Name();
    const bool isFile = !kinds_.empty() && (extension_.empty() || IsOfKind(name, extension_));
    return isFile ? name : name + extension_;
}

/// In the list of several kinds any template can be named, also one that is not loaded.
std::string SavedMappings::FileToDelete() const {
    const std::string name = Name();
    const bool isFile = std::any_of(kinds_.begin(), kinds_.end(),
                                    [&](std::string_view kind) { return IsOfKind(name, kind); });
    return isFile ? name : File();
}

/// How the list has a template.
QString SavedMappings::Listed(const std::string& file) const {
    return PathToQt(kinds_.empty() ? Name() : file);
}

void SavedMappings::Choose(std::string_view file) {
    const QString name = PathToQt(file).chopped(static_cast<qsizetype>(ExtensionOf(file).size()));
    cboSettings->setCurrentIndex(cboSettings->findText(name, Qt::MatchFixedString));
}

bool SavedMappings::Save() {
    if (Name().empty()) {
        Tell(msg::TypeTemplateName, Icon::Warning);
        cboSettings->setFocus();
        return false;
    }
    if (!deeds_.CanSave()) return false;
    try {
        if (!IsPlainFileName(Name())) throw RunTimeFailure(52, Name());
        deeds_.Write(Path());
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::TemplateNotSaved, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
    ListName(*cboSettings, Listed(File()));
    return true;
}

void SavedMappings::cmdSaveSettings_Click() {
    Owner().Trace("cmdSaveSettings_Click");
    Save();
}

void SavedMappings::cmdDelSettings_Click() {
    Owner().Trace("cmdDelSettings_Click");
    const std::string file = FileToDelete();
    if (IsPlainFileName(file)) deeds_.Remove(folder_ + file);
    UnlistName(*cboSettings, Listed(file));
    deeds_.Clear();
}
