#pragma once

#include <QDialog>
#include <QEventLoop>
#include <QMainWindow>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QWindow;

enum class ShowMode { Modeless, Modal };

/// What every screen of the program is, whatever its window: one instance made on first use,
/// wired and captioned by names, with `Form_Load`, `Form_GotFocus` and `Form_Unload`.
///
/// A handler is a private slot named after its control and event: `cmdOK_Click`,
/// `lstSelected_DblClick`, `FG1_RequestEdit`, `cboSettings_Change`, `Timer2_Timer`,
/// `FG1_ColumnClick(int)`, `FG1_SelChange`. The elements `cmdX_1`, `cmdX_2` of a control array share
/// `cmdX_Click(int index)`.
class FormBehaviour {
public:
    virtual ~FormBehaviour() = default;
    FormBehaviour(const FormBehaviour&) = delete;
    FormBehaviour& operator=(const FormBehaviour&) = delete;

    virtual QWidget& Window() = 0;

    /// Shows the form and calls `Form_GotFocus` behind the first paint. Modal is modal to the whole
    /// program and returns when the form has gone. One that is not modal can be used beside the modal
    /// ones that stand when it is shown. A form that has gone is not shown again.
    void Show(ShowMode mode = ShowMode::Modeless);

    /// Runs `Form_Unload`, hides and forgets the form at once. The object stays until the last of
    /// its handlers has returned.
    void Unload();

    bool IsGone() const { return gone_; }

    /// Whether it goes with all others when the main screen turns to something else.
    virtual bool IsSecondary() const { return true; }

    /// Whether it is used beside all others: that it comes or goes is nothing to the form below it.
    virtual bool IsBeside() const { return false; }

    /// The topic of the help that tells of the screen as it stands, a file name such as "Notes.htm". F1 opens
    /// it, and so does each button `cmdHelp`, `imgHelp` or `img...Help` that has no handler of its own. A
    /// control with the property "HelpTopic" opens the one named there. See help/HelpTopics.h for the table.
    virtual std::string HelpTopic() const;

    /// The form has gone, or the process is ending: a handler that has waited goes no further.
    bool IsOver() const;

    /// Connects the handlers of one control that was made after the form was loaded.
    void WireControl(QObject& control);

    /// Handlers whose control is missing or has no such event; and enabled buttons, menu entries and
    /// labels with a hand for a pointer that no handler serves.
    QStringList WiringProblems() const;

    /// Blocks in the event loop while the condition holds. Ends at once when the form has gone or
    /// the process is ending.
    void WaitWhile(const std::function<bool()>& condition);

    /// A short pause in which the screen paints. What the operator does meanwhile comes behind it.
    void PauseFor(double seconds);

    /// Names a routine of this form in the trace.
    void Trace(std::string_view routine) const;

protected:
    FormBehaviour() = default;

    virtual void Form_Load() {}
    virtual void Form_GotFocus() {}
    virtual void Form_Unload() {}

    /// Esc: presses `cmdCancel`, or `cmdOK` where there is no such button.
    void PressEscape();

    /// Runs a handler of an event that is no control's. The form outlives it, and a failure is told and
    /// ends the process.
    void Run(const std::function<void()>& handler);

    /// Takes a step over a file. False when the disk would not have it: the operator has been told.
    static bool Try(const std::function<void()>& step);

private:
    friend class FormRegistry;

    void LoadNow();
    void WireControls();
    void WireHelp(QObject& control);
    void Leave();
    void RunMethod(QObject& owner, int method, int index);
    void QueueGotFocus();

    int running_ = 0;
    bool gone_ = false;
    bool shown_ = false;
};

/// A dialog of the program. Enter presses the default button.
class Form : public QDialog, public FormBehaviour {
public:
    QWidget& Window() override { return *this; }
    void reject() override { PressEscape(); }

protected:
    Form() = default;
    void closeEvent(QCloseEvent* event) override;
};

/// Handlers that several forms share, for controls that all of them have under the same names. They are wired
/// as if they were the form's own. Made before the form is loaded.
class FormPart : public QObject {
    Q_OBJECT

protected:
    explicit FormPart(Form& form) : QObject(&form), owner_(form) {}

    Form& Owner() const { return owner_; }

private:
    Form& owner_;
};

/// The main screen's window: Esc and Enter do nothing.
class MainForm : public QMainWindow, public FormBehaviour {
public:
    QWidget& Window() override { return *this; }
    bool IsSecondary() const override { return false; }

protected:
    MainForm() = default;
    void closeEvent(QCloseEvent* event) override;
};

/// The forms that are loaded, by class name.
class FormRegistry {
public:
    static FormRegistry& Instance();

    FormBehaviour* Find(const char* className);
    FormBehaviour& Adopt(std::unique_ptr<FormBehaviour> form);

    /// Names of the loaded forms, in the order of the names without regard to case.
    QStringList Names() const;

    /// Unloads every secondary form, in the order of the forms' names.
    void UnloadSecondary();

    /// Unloads all, the secondary ones first, and destroys them: for the end of a program or a test.
    void Clear();

private:
    friend class FormBehaviour;

    void Forget(FormBehaviour& form);
    void Release(FormBehaviour& form);
    FormBehaviour* Topmost() const; ///< of those that are shown and not beside the others; or nothing
    void FocusTopmost();
    /// A window that is shown while a modal one stands belongs to that one: only so can it be reached.
    static void BelongToModal(QWidget& window);
    /// Windows that belong to one that has gone belong to the modal one below it, if any.
    void PassOn(const QWindow* owner);
    void Raise(FormBehaviour& form);

    std::vector<std::unique_ptr<FormBehaviour>> forms_;
    std::vector<std::unique_ptr<FormBehaviour>> leaving_; ///< unloaded, with a handler still running
    std::vector<FormBehaviour*> shown_;                   ///< the lowest first
};

/// The one instance of a form, loaded on first use.
template <class F>
F& The() {
    const char* name = F::staticMetaObject.className();
    FormBehaviour* form = FormRegistry::Instance().Find(name);
    if (!form) form = &FormRegistry::Instance().Adopt(std::make_unique<F>());
    return static_cast<F&>(*form);
}

/// The form if it is loaded, else nothing.
template <class F>
F* IfLoaded() {
    return static_cast<F*>(FormRegistry::Instance().Find(F::staticMetaObject.className()));
}

/// Fills the captions of a window and all in it from the catalogue: property "Tag" the text's
/// number, "TipTag" the number of its tool tip and accessible name.
void FillCaptions(QWidget& window);

/// Ends the process: every wait and loop returns.
void EndProgram(int exitCode);

/// Tells the operator of a failure that no handler caught, with the last trace line, and ends the
/// process.
void FailUnexpectedly(const std::exception& failure);

/// Blocks in the event loop while the condition holds and the process is not ending.
void WaitInLoop(const std::function<bool()>& condition,
                QEventLoop::ProcessEventsFlags events = QEventLoop::AllEvents);
