#pragma once

#include "core/Globals.h"
#include "core/Text.h"
#include "platform/Form.h"

#include <QString>

#include <string>
#include <string_view>
#include <vector>

class QComboBox;
class QWidget;

/// What the pages of frmOptions share: files that are kept under a name, and droplists of templates. Names
/// and paths are in the file system's encoding.

/// A list of files that is typed into, and which of them is on the screen.
struct NamedFiles {
    QComboBox* Box = nullptr;
    std::string_view Extension;
    const std::string* Folder = nullptr; ///< with a separator at its end
    QString Loaded = {};                 ///< a typed name that is another's is not that file

    std::string Name() const;
    std::string Path() const;

    /// Lists the files that there are, none of them chosen.
    void Fill() const;

    /// Turns to the list and chooses a file. False, nothing chosen, when it is not there.
    bool Choose(const QString& name) const;

    /// A name that was typed must do for a new file, and replaces another one only after a question.
    bool NameCanBeSaved() const;

    /// The file is on the screen no more, and its name leaves the list.
    void Forget();
};

/// Whether a name comes back from a line that ends at one of `ends`. Where it does not, the operator is told
/// and stands on the list.
bool NameIsKept(QComboBox& box, const std::string& name, std::string_view ends = {});

/// The template that a droplist shows.
std::string TemplateIn(const QComboBox& box);

/// Chooses a template in a droplist; the first row is none. Where none can be shown, the list says why.
void ChooseTemplate(QComboBox& box, const QString& name);

/// Fills a droplist behind an empty row; what was chosen stays chosen.
void FillTemplates(QComboBox& box, const std::vector<std::string>& names);

/// Opens the screen that keeps templates of a kind; false when the form it was opened from has gone
/// meanwhile.
template <class F>
bool EditTemplates(const Form& from) {
    Global.TemplateEditMode = true;
    Global.TemplateEditKind.clear();
    The<F>().Show(ShowMode::Modal);
    Global.TemplateEditMode = false;
    return !from.IsOver();
}

/// Turns to the tab that a control stands on, and to the control.
void GoTo(QWidget& control);

/// A path in a sentence.
Text PathText(const std::string& path);

/// Writes the settings of the PC. False when it cannot: the operator has been told.
bool SaveSettings();
