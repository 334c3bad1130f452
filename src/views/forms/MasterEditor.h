#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "views/MasterTable.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class HelpLine;
class LookupBox;
class QGroupBox;
class QLabel;
class QPushButton;
class RecordMoves;

/// The editors of the master tables: one machine with different controls and words.
///
/// A line or a list whose property "Tag" is a number shows the field of that place, and is saved with the
/// record. A move saves first, and Cancel drops only what has not been saved; a record that was added
/// stays. The main screen counts again when the editor closes.
class MasterEditor : public Form {
    Q_OBJECT

public:
    /// Saves the record on the screen and goes to another one, by its number.
    void GoTo(std::int32_t record);

private slots:
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdView_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cboLookup_Click();
    void txtField_Change(int place);

protected:
    explicit MasterEditor(const MasterKind& kind);

    /// What the help line says of a control.
    using Help = std::pair<QWidget*, MessageId>;

    /// Finds the controls by their names. After setupUi. `lookup` is the help for the droplist of records.
    void Bind(const std::vector<Help>& help, MessageId lookup);

    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;
    bool eventFilter(QObject* object, QEvent* event) override;

    void ShowWarning();

    /// What a screen has to say beside the warnings of the table.
    virtual Text OwnWarning(const MasterTable& table) const;

private:
    /// A control and the place of its field.
    struct Bound {
        QWidget* Control;
        int Place;
    };

    void UpdateLookup();
    void DisplayData();
    void UpdateData(bool& ok);

    bool Saved();
    bool StillThere(bool there);
    bool IsModified() const;
    void Move(std::int32_t target);
    void ShowCount();
    MasterTable::Cells Cells() const;
    Text Warning() const;

    const MasterKind& kind_;
    MasterTable table_;
    std::vector<Bound> bound_; ///< by place
    bool Loading = false;

    RecordMoves* moves_ = nullptr;
    QPushButton *cmdFirst = nullptr, *cmdPrevious = nullptr, *cmdNext = nullptr, *cmdLast = nullptr;
    QPushButton *cmdAdd = nullptr, *cmdDelete = nullptr, *cmdView = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr;
    LookupBox* cboLookup = nullptr;
    QGroupBox *frFind = nullptr, *frFields = nullptr;
    QLabel *lblWarning = nullptr, *lblHelp = nullptr;
};
