#include "help/forms/QtHelp.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "help/forms/HelpFile.h"
#include "help/forms/PopupBox.h"
#include "help/forms/frmHelp.h"
#include "platform/Convert.h"

#include <QHelpLink>
#include <QWhatsThis>

namespace {

constexpr std::string_view Joint = "::/"; ///< between the help file and a file in it

std::vector<std::string> Names(const QList<QHelpLink>& topics) {
    std::vector<std::string> names;
    for (const QHelpLink& topic : topics) names.push_back(topic.url.fileName().toStdString());
    return names;
}

} // namespace

QtHelp::QtHelp() : help_(*this) {
    Global.TheHelp = &help_;
}

QtHelp::~QtHelp() {
    Global.TheHelp = nullptr;
}

void QtHelp::SetFile(const std::string& path) {
    // One that was not to be read may have come meanwhile.
    if (path == path_ && file_ && file_->Condition() == HelpFile::State::Open) return;
    path_ = path;
    if (auto* window = IfLoaded<frmHelp>()) window->SetFile(nullptr);
    file_.reset();
}

HelpFile& QtHelp::File() {
    if (!file_) file_ = std::make_unique<HelpFile>(PathToQt(path_));
    return *file_;
}

frmHelp& QtHelp::Opened() {
    auto& window = The<frmHelp>();
    window.SetFile(&File());
    if (window.windowFlags().testFlag(Qt::WindowStaysOnTopHint) != onTop_)
        window.setWindowFlag(Qt::WindowStaysOnTopHint, onTop_);
    window.Show();
    return window;
}

void QtHelp::ShowTopic(const std::string& topic) {
    Opened().ShowTopic(ToQt(topic));
}

void QtHelp::ShowPane(HelpPane pane) {
    Opened().ShowPane(pane);
}

void QtHelp::ShowNotice(const Text& title, const Text& words) {
    Opened().ShowNotice(title, words);
}

void QtHelp::ShowKeyword(const std::string& keyword) {
    Opened().ShowKeyword(ToQt(keyword));
}

std::vector<std::string> QtHelp::TopicsOfKeyword(const std::string& keyword) {
    return Names(File().TopicsOfKeyword(ToQt(keyword)));
}

std::vector<std::string> QtHelp::TopicsOfIdentifier(const std::string& identifier) {
    return Names(File().TopicsOfIdentifier(ToQt(identifier)));
}

void QtHelp::Close() {
    if (auto* window = IfLoaded<frmHelp>()) window->Unload();
}

std::uintptr_t QtHelp::Handle() const {
    const auto* window = IfLoaded<frmHelp>();
    return window && window->isVisible() ? static_cast<std::uintptr_t>(window->winId()) : 0;
}

void QtHelp::ShowPopup(const PopupDefinition& popup, std::optional<ScreenPlace> place) {
    QString words = ToQt(popup.Words);
    if (!popup.File.empty()) {
        const std::string name = popup.File.substr(popup.File.rfind(Joint) + Joint.size());
        const QByteArray content = File().Data(File().Find(ToQt(name)));
        const auto section = PopupSection(content.toStdString(), popup.ID);
        words = section ? QString::fromStdString(*section) : ToQt(Text(msg::HelpNoHint));
    }
    PopupBox::Show(words, popup, place);
}

void QtHelp::BeginWhatsThis() {
    QWhatsThis::enterWhatsThisMode();
}
