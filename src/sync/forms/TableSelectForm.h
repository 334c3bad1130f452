#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "platform/SFrmUt40.h"
#include "sync/SFrmAX40.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class GridView;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

/// What the screens that choose tables and start one HotSync for them share: boxes for groups of tables,
/// saved selections of them, a hint for the control at hand, the handhelds that there are, and the HotSync
/// itself. Opened to keep saved selections (`Global.TemplateEditMode`, or by the report of the Quality Check
/// for one that is named there), such a screen saves and closes, and starts nothing.
class TableSelectForm : public Form {
    Q_OBJECT

public:
    /// Before the form is shown: chooses a saved selection, and performs it without a question as soon as
    /// the form stands. `held` becomes true when a session was held.
    void Drive(const std::string& settings, bool& held);

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
    };

    /// What the screen says of its own controls.
    struct Hints {
        MessageId Boxes, OK, Cancel;
    };

    explicit TableSelectForm(Kind kind) : kind_(kind) {}

    /// Binds the controls that every such screen has under the same names. After setupUi. `counted`: the
    /// tables are shown with the number of their records.
    void Bind(std::vector<Group> groups, const Hints& hints, bool counted);

    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;
    bool eventFilter(QObject* object, QEvent* event) override;

    /// Shows a saved selection, and saves the one that is shown. RunTimeFailure as TableTemplates.
    virtual void ReadSettings(const std::string& path) = 0;
    virtual void WriteSettings(const std::string& path) = 0;

    /// What Ok does once the selection is saved: asks, checks and transfers, to the end.
    virtual void Perform() = 0;

    /// The control's event.
    virtual void HotSyncStatus(std::int32_t status) = 0;

    /// Trace text "form:routine".
    void Trace(std::string_view routine) const;

    SFrmAX40& Control() const { return *control_; }

    /// A QuickButton performs a selection: nothing is asked.
    bool IsDriven() const { return driven_; }
    bool IsFromConfigurator() const { return fromConfigurator_; }

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

    /// Holds one HotSync. Its events go to HotSyncStatus.
    FlushEnd FlushCommandQueue();

    /// Waits until the HotSync Manager has closed the window of the transfer.
    void AwaitProgressWindow();

    /// Tells why there was no session; nothing to an operator who did not want one any more.
    static void TellEnd(FlushEnd end);

    /// Closes the screen when a session was held, or when nobody chose on it. Else it stays for another try.
    void Finish(bool held);

private:
    std::string SettingsName() const;
    std::string SettingsPath() const;
    bool LoadSettings();
    bool Save();
    bool NothingChosen() const;
    void DisplayLinkData();
    void DisplayData();
    void ShowTables();
    void ShowChoice();
    void ShowHint(const QObject* control);
    Text HintFor(const QObject* control) const;
    void OnStatus(std::int32_t status);

    Kind kind_;
    Hints hints_{};
    std::vector<Group> groups_;
    bool counted_ = false;

    std::string repair_; ///< the file that the report of the Quality Check has sent the operator to
    bool keeps_ = false; ///< open to keep saved selections only
    bool fromConfigurator_ = false;
    bool standing_ = false; ///< has been shown
    bool busy_ = false;
    bool driven_ = false;
    std::string drive_; ///< the selection that is to be performed
    bool* held_ = nullptr;

    std::unique_ptr<SFrmAX40> control_;
    std::vector<std::vector<Text>> FGLink; ///< what the Links table says of the handhelds

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
    GridView* FG1 = nullptr;
};
