#include "tools/forms/NamedFiles.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/Settings.h"
#include "core/TextCompare.h"
#include "exchange/forms/Lists.h"
#include "platform/Convert.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTabWidget>

namespace {

/// False for a name that comes back as another from a line, which ends at one of `ends`.
bool IsKept(const std::string& name, std::string_view ends) {
    const std::string written = PathToName(name);
    return NameToPath(written) == name && Trim(written) == written &&
           written.find_first_of(ends) == std::string::npos;
}

} // namespace

std::string NamedFiles::Name() const {
    return PathFromQt(Box->currentText().trimmed());
}

std::string NamedFiles::Path() const {
    return *Folder + Name() + std::string(Extension);
}

void NamedFiles::Fill() const {
    for (const std::string& name : NamesWithExtension(*Folder, Extension)) Box->addItem(PathToQt(name));
    Box->setCurrentIndex(-1);
    Box->lineEdit()->setPlaceholderText(ToQt(Text(msg::NameHint)));
}

bool NamedFiles::Choose(const QString& name) const {
    GoTo(*Box);
    const int row = Box->findText(name, Qt::MatchFixedString);
    if (row >= 0) Box->setCurrentIndex(row);
    return row >= 0;
}

bool NamedFiles::NameCanBeSaved() const {
    const std::string name = Name();
    if (Loaded.compare(PathToQt(name), Qt::CaseInsensitive) == 0) return true;
    bool saved = IsNameForNewFile(name);
    if (!saved)
        Tell(Lines(msg::NotAFileName, PathText(name)), Icon::Warning);
    else if (FileExists(Path()))
        saved = AskYesNo(Words(PathText(name), msg::ReplaceNamed), Icon::Warning);
    if (!saved) GoTo(*Box);
    return saved;
}

void NamedFiles::Forget() {
    UnlistName(*Box, PathToQt(Name()));
    Loaded.clear();
}

bool NameIsKept(QComboBox& box, const std::string& name, std::string_view ends) {
    if (IsKept(name, ends)) return true;
    Tell(Lines(msg::NameNotKeptInSettings, PathText(name)), Icon::Warning);
    GoTo(box);
    return false;
}

std::string TemplateIn(const QComboBox& box) {
    return PathFromQt(box.currentText());
}

void ChooseTemplate(QComboBox& box, const QString& name) {
    const bool none = name.isEmpty() && box.count() == 1;
    box.setCurrentIndex(none ? -1 : box.findText(name, Qt::MatchFixedString));
    box.setPlaceholderText(
        ToQt(none ? Text(msg::NoTemplatesYet) : Words(PathText(PathFromQt(name)), msg::IsMissing)));
}

void FillTemplates(QComboBox& box, const std::vector<std::string>& names) {
    const QString chosen = box.currentText();
    box.clear();
    box.addItem(QString());
    for (const std::string& name : names) box.addItem(PathToQt(name));
    ChooseTemplate(box, chosen);
}

void GoTo(QWidget& control) {
    auto* tabs = control.window()->findChild<QTabWidget*>(QStringLiteral("SSTab1"));
    for (int at = 0; at < tabs->count(); ++at) {
        if (tabs->widget(at)->isAncestorOf(&control)) tabs->setCurrentIndex(at);
    }
    control.setFocus();
}

Text PathText(const std::string& path) {
    return Text::Path(std::string_view(path));
}

bool SaveSettings() {
    try {
        UpdateIniFile();
        GetIniFile();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ConfigurationError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}
