#pragma once

#include "core/Text.h"
#include "platform/Form.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class HelpLine;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

/// What the screens that choose tables share: boxes for groups of tables, saved selections of them, and a
/// hint for the control at hand. Opened to keep saved selections (`Global.TemplateEditMode`, or by the report
/// of the Quality Check for one that is named there), such a screen saves and closes.
class TableSelectForm : public Form {
    Q_OBJECT

public:
    /// Before the form is shown: chooses a saved selection, and performs it without a question as soon as
    /// the form stands. `performed` becomes true when that was done.
    void Drive(const std::string& settings, bool& performed);

private slots:
    void cboSettings_Click();
    void cmdSave_Click();
    void cmdDelete_Click();
    void cmdSelectAll_Click();
    void cmdClear_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    /// Where the saved selections of a screen lie.
    struct Kind {
        const std::string* Folder;
        std::string_view Extension; ///< as ".ust"
    };

    /// A box, and what is said of its tables beside it.
    struct Group {
        QCheckBox* Box;
        QLabel* Tables;
        std::vector<std::string_view> Names; ///< of the tables, without extension
        std::optional<MessageId> Hint = {};  ///< in place of the one for all boxes
    };

    /// What the screen says of its own controls, and when nothing is chosen.
    struct Hints {
        MessageId Boxes, OK, Cancel, Nothing;
    };

    explicit TableSelectForm(Kind kind) : kind_(kind) {}

    /// Binds the controls that every such screen has under the same names. After setupUi. `counted`: the
    /// tables are shown with the number of their records.
    void Bind(std::vector<Group> groups, const Hints& hints, bool counted);

    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

    /// Shows a saved selection, and saves the one that is shown. RunTimeFailure as TableTemplates.
    virtual void ReadSettings(const std::string& path) = 0;
    virtual void WriteSettings(const std::string& path) = 0;

    /// What Ok does once the selection is saved: asks, checks and does its work, to the end.
    virtual void Perform() = 0;

    /// Whether Ok ends with the selection saved.
    virtual bool OnlySaves() const { return keeps_; }

    /// A QuickButton's run has come to its end, and the screen still stands.
    virtual void EndDrive() {}

    /// A QuickButton performs a selection: nothing is asked.
    bool IsDriven() const { return driven_; }
    /// That has been done.
    void SetPerformed();

    /// The screen is open to keep saved selections.
    bool Keeps() const { return keeps_; }
    bool IsFromConfigurator() const { return fromConfigurator_; }
    bool HasSettingsName() const { return !SettingsName().empty(); }

    const std::vector<Group>& Groups() const { return groups_; }
    HelpLine& Help() const { return *help_; }

    /// Writes beside each box what its tables are called.
    virtual void ShowTables();

    /// Whether the screen can be left while it is busy.
    enum class WayOut { Open, Shut };

    /// While it lives nothing on the screen can be changed; the line of hints says why.
    class Busy {
    public:
        Busy(TableSelectForm& form, const Text& why, WayOut way) : form_(form) { form_.SetBusy(why, way); }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;
        ~Busy() { form_.SetBusy({}, WayOut::Open); }

    private:
        TableSelectForm& form_;
    };
    void SetBusy(const Text& why, WayOut way);

    /// False when another program holds one of the tables: the operator has been told.
    static bool TablesAreFree(const std::vector<std::string>& paths);

private:
    std::string SettingsName() const;
    std::string SettingsPath() const;
    bool LoadSettings();
    bool Save();
    bool NothingChosen() const;
    void ShowChoice();
    void AddHints();

    Kind kind_;
    Hints hints_{};
    std::vector<Group> groups_;
    bool counted_ = false;

    std::string repair_; ///< the file that the report of the Quality Check has sent the operator to
    bool keeps_ = false;
    bool fromConfigurator_ = false;
    bool busy_ = false;
    bool driven_ = false;
    std::string drive_; ///< the selection that is to be performed
    bool* performed_ = nullptr;
    HelpLine* help_ = nullptr;

    QComboBox* cboSettings = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdDelete = nullptr;
    QPushButton* cmdSelectAll = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
    QLabel* lblNothing = nullptr;
    QLabel* lblInfo = nullptr;
    QWidget* pnlSelection = nullptr;
};
