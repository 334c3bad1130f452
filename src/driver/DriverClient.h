#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

#include <chrono>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <utility>

/// What a driven program did not do, in words: the form, the control, what was expected and what
/// was found, and the end of what the program wrote to its standard error.
class DriverFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The program to start, and where.
struct DrivenProgram {
    QString Program; ///< full path
    QStringList Arguments;
    QString Folder; ///< working folder; empty for the client's own temporary one
    /// Variables on top of the inherited ones. HOME, XDG_CONFIG_HOME, XDG_DATA_HOME, XDG_CACHE_HOME
    /// and XDG_RUNTIME_DIR lie in the client's own folder, and QT_QPA_PLATFORM is "offscreen",
    /// unless they are given here.
    QMap<QString, QString> Environment;
    /// The folder that contains generic/libtrambledriver.so; empty for the one of this build.
    QString Plugins;
};

/// The cells of a table as they are shown.
struct DrivenTable {
    QStringList Headings;
    QList<QStringList> Rows;
    /// Cells with a ground of their own, by row and column, counted from 0: its colour, as "#ff0000".
    QMap<QPair<int, int>, QString> Grounds;

    /// The cell below a heading; throws DriverFailure when there is no such row or heading.
    QString Cell(qsizetype row, const QString& heading) const;
};

/// A named control of a form.
struct DrivenControl {
    QString Name, Class;
    bool Enabled = false, Visible = false;
};

/// A window on the driven program's screen.
struct DrivenForm {
    QString Name, Title;
    bool Modal = false, Active = false, Blocked = false;
};

/// A box that was answered as expected.
struct DrivenBox {
    QString Name, Text, Answer;
};

class DriverLine;

/// Starts a program and sits before its screen. Forms and controls go by their object names; a
/// form's is its class name.
///
/// The calls block and run an event loop of their own; a QCoreApplication must exist. Whatever the
/// program does not do throws DriverFailure, and so does a box that was not expected, at the next
/// call. A deed returns when it is done, or as soon as the program waits in it (for a modal form,
/// say). The program is killed when the client goes, and on Linux also when its process does.
class DriverClient {
public:
    using Milliseconds = std::chrono::milliseconds;

    explicit DriverClient(DrivenProgram program);
    ~DriverClient();
    DriverClient(const DriverClient&) = delete;
    DriverClient& operator=(const DriverClient&) = delete;

    /// How long a wait lasts that names no time of its own: 30 seconds at first. A deed may take
    /// ten times as long, since the program answers nothing while it works.
    void SetPatience(Milliseconds patience);

    /// Starts the program and connects. What was expected before holds for boxes that come at once.
    void Start();

    bool IsRunning() const;
    /// The system's number of the program; 0 while it does not run.
    qint64 ProcessId() const;

    /// The client's own folder, gone with it; ends without a separator.
    QString Folder() const;

    // ---- boxes ----

    /// The next box that comes is a `MsgBox` with exactly this text and is answered by the button
    /// (`Yes`, `No`, `Ok`). Expectations are met in their order.
    void Expect(const QString& text, const QString& button = QStringLiteral("Ok"));
    void ExpectContaining(const QString& piece, const QString& button = QStringLiteral("Ok"));

    /// As Expect, for an `InputBox` into which `input` is typed.
    void ExpectInput(const QString& text, const QString& input);
    void ExpectInputContaining(const QString& piece, const QString& input);

    /// As Expect, for a `FileDialog` with this title, in which a file is chosen by its path.
    void ExpectFile(const QString& title, const QString& path);

    /// As Expect, for an `InputBox` that is given up.
    void ExpectInputCancelled(const QString& text);

    /// The boxes still expected, in words.
    QStringList Expectations();

    /// The boxes that failed, in words; from here on the program takes requests again. The boxes
    /// stay on the screen.
    QStringList Failures();

    /// The boxes answered so far, in their order.
    QList<DrivenBox> Boxes() const;

    /// Holds when every expected box has come within the time and no other one did.
    void Done(Milliseconds within = Milliseconds(0));

    // ---- deeds ----

    /// A button or a menu entry.
    void Click(const QString& form, const QString& control);

    /// An entry of a combo box, a list, a table's first column, or a tab, by its text.
    void Choose(const QString& form, const QString& control, const QString& entry);
    void ChooseTwice(const QString& form, const QString& control, const QString& entry);
    /// Adds an entry of a list to those that are chosen, or takes it away again.
    void ChooseAlso(const QString& form, const QString& control, const QString& entry);
    /// An entry by its place, counted from 0.
    void ChooseRow(const QString& form, const QString& control, int row, int column = 0, bool twice = false);

    void ClickHeading(const QString& form, const QString& control, const QString& heading);

    /// Types a text in place of the one that stands in the control.
    void Set(const QString& form, const QString& control, const QString& text);
    void Set(const QString& form, const QString& control, const char* text) {
        Set(form, control, QString::fromUtf8(text));
    }
    void Set(const QString& form, const QString& control, int number) {
        Set(form, control, QString::number(number));
    }
    /// Ticks or clears a box or an option.
    void Set(const QString& form, const QString& control, bool tick);

    void Focus(const QString& form, const QString& control);

    /// A key to what has the focus: "Tab", "Return", "Escape", "Alt+I", "Down", "a".
    void Key(const QString& key);
    void Type(const QString& text);

    /// Closes a window as by its cross.
    void Close(const QString& form);

    // ---- looks ----

    /// The windows on the screen, the topmost first.
    QList<DrivenForm> Forms();
    bool IsShown(const QString& form);

    /// The controls of a form that have a name, hidden ones too.
    QList<DrivenControl> Controls(const QString& form);
    QString Text(const QString& form, const QString& control);
    QString Title(const QString& form);
    /// The text of a box that stands on the screen.
    QString BoxText(const QString& form);
    bool IsEnabled(const QString& form, const QString& control);
    bool IsVisible(const QString& form, const QString& control);
    bool IsChecked(const QString& form, const QString& control);
    bool HasFocus(const QString& form, const QString& control);
    QJsonValue Property(const QString& form, const QString& control, const QString& name);
    QStringList Items(const QString& form, const QString& control);
    QStringList ChosenItems(const QString& form, const QString& control);
    DrivenTable Rows(const QString& form, const QString& control);

    /// Saves a picture of a form as a PNG file; a full path.
    void Grab(const QString& form, const QString& file);

    // ---- waits: for as long as the patience lasts when no time is given ----

    /// The form is shown, painted, and has run what it queued behind its first paint.
    void WaitForm(const QString& form, Milliseconds within = Milliseconds(-1));
    void WaitGone(const QString& form, Milliseconds within = Milliseconds(-1));
    void WaitEnabled(const QString& form, const QString& control, Milliseconds within = Milliseconds(-1));
    void WaitDisabled(const QString& form, const QString& control, Milliseconds within = Milliseconds(-1));
    /// Returns the text found.
    QString WaitText(const QString& form, const QString& control, const QString& text,
                     Milliseconds within = Milliseconds(-1));
    QString WaitTextContaining(const QString& form, const QString& control, const QString& piece,
                               Milliseconds within = Milliseconds(-1));

    // ---- the end ----

    /// Closes `frmMain1` as a person would, waits for the program's end and returns its exit code.
    /// Throws for a crash, for a box that was not expected, and for an expected one that never came.
    int Quit(Milliseconds within = Milliseconds(-1));

    /// As Quit, for a program that was told to end in another way.
    int WaitForEnd(Milliseconds within = Milliseconds(-1));

    /// Ends the program at this instant, as a power cut would.
    void Kill();

    QString StandardOutput() const;
    QString StandardError() const;

    /// Sends one request (docs/driver.md) and returns the answer's results.
    QJsonObject Request(const QString& deed, QJsonObject arguments = {},
                        Milliseconds within = Milliseconds(-1));

private:
    QJsonObject Wait(const QString& deed, QJsonObject arguments, Milliseconds within);
    QJsonObject To(const QString& form, const QString& control,
                   std::initializer_list<std::pair<const char*, QJsonValue>> more = {}) const;
    void Register(const QJsonObject& expectation);

    std::unique_ptr<DriverLine> line_;
};
