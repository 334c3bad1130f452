#pragma once

#include "platform/Form.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QComboBox;

/// The saved templates of a screen that lays out columns: the droplist cboSettings, and the buttons
/// cmdSaveSettings and cmdDelSettings. What choosing a template shows is the form's own. Names and paths are
/// in the file system's encoding. Made after setupUi; it belongs to the form.
class SavedMappings final : public FormPart {
    Q_OBJECT

public:
    /// What the form does with a template.
    struct Deeds {
        std::function<bool()> CanSave; ///< false when there is nothing to save: the operator has been told
        std::function<void(const std::string& path)> Write;  ///< RunTimeFailure when it cannot
        std::function<void(const std::string& path)> Remove; ///< what lies beside the file goes too
        std::function<void()> Clear;                         ///< the screen shows no template any more
    };

    /// `folder` has a separator at its end.
    SavedMappings(Form& form, std::string folder, Deeds deeds);

    /// Shows the templates of one kind, without their extension.
    void List(std::string_view extension);
    /// Shows those of several kinds with their extensions. Which kind is at hand, Use says.
    void ListKinds(const std::vector<std::string_view>& extensions);
    /// The extension that a name stands for from now on; empty for none.
    void Use(std::string_view extension) { extension_ = extension; }

    /// The name as it stands in the box.
    std::string Name() const;
    /// Of the template that the box names.
    std::string File() const;
    std::string Path() const { return folder_ + File(); }

    /// Chooses a template by its file's name, without announcing it; none when it is not in the list. Behind
    /// List only.
    void Choose(std::string_view file);

    /// Writes what the screen holds under the name in the box. False when it could not: the operator has been
    /// told.
    bool Save();

private slots:
    void cmdSaveSettings_Click();
    void cmdDelSettings_Click();

private:
    std::string FileToDelete() const;
    QString Listed(const std::string& file) const;

    std::string folder_;
    Deeds deeds_;
    std::vector<std::string_view> kinds_; ///< empty: names are listed without their extension
    std::string extension_;
    QComboBox* cboSettings;
};
