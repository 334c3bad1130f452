#pragma once

#include "core/Printer.h"
#include "core/Text.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

enum class Answer { Ok, Yes, No };
enum class Buttons { Ok, YesNo };
enum class Icon { None, Information, Question, Warning, Stop };

/// The shared question form: a text, and two buttons whose captions the caller gives. Without a
/// caption for Yes it is a notice of one button.
struct Question {
    Text Message;
    std::optional<MessageId> YesCaption;
    MessageId NoCaption;
    std::string HelpTopic;                         ///< shows the help button when not empty
    std::optional<MessageId> Title = std::nullopt; ///< of the window, in place of the program's
};

/// A file of a folder that is to be chosen.
struct FileQuestion {
    Text Title;
    Text Kind;             ///< what files with this extension are called
    std::string Extension; ///< with its point, in any case: no other files are offered
    std::string Folder;    ///< where the choice begins, a full path
};

/// The one way to the operator. All boxes bear the program's title.
class Operator {
public:
    virtual ~Operator() = default;

    /// A message box. With Buttons::YesNo the answer is Yes or No, and closing the box is No.
    virtual Answer MsgBox(const Text& message, Icon icon, Buttons buttons) = 0;

    /// Asks for a line of text, in code page 1252; at most 32767 characters, blanks
    /// kept. Nothing when the operator gives up.
    virtual std::optional<std::string> InputBox(const Text& prompt, const std::string& preset) = 0;

    /// Asks for a file that is there: its full path, of any folder. Nothing when the operator gives up.
    virtual std::optional<std::string> OpenFile(const FileQuestion& question) = 0;

    /// Shows the shared question form; true when it left MessageAnswer true.
    virtual bool Ask(const Question& question) = 0;

    /// The common printer dialog: where a document of this name is to go, to a printer or a file. Nothing
    /// when the operator gives up. RunTimeFailure when the printer or the file is not to be had.
    virtual std::unique_ptr<Printer> PrinterDialog(const Text& document) = 0;

    /// Hands a link to the desktop, which opens it by the program that it has for such: a "mailto:" link as
    /// SendMail builds it (tools/Mail.h), or the address of a web page. False when there is no such program,
    /// or the link is longer than the desktop takes.
    virtual bool OpenLink(std::string_view link) = 0;

    /// A short sound.
    virtual void Beep() = 0;
};

/// A box with one button.
void Tell(const Text& message, Icon icon = Icon::None);

/// A box with Yes and No; true for Yes.
bool AskYesNo(const Text& message, Icon icon = Icon::Question);
