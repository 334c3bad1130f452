#include "installation/forms/QuickStartPage.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "installation/forms/frmQuickStart.h"
#include "installation/forms/frmQuickStart2.h"
#include "installation/forms/frmQuickStart3.h"
#include "installation/forms/frmQuickStart4.h"
#include "installation/forms/frmQuickStart5.h"
#include "installation/forms/frmQuickStart6.h"
#include "installation/forms/frmQuickStart7.h"
#include "installation/forms/frmQuickStart8.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "quality/forms/QCRun.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyleOptionFocusRect>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>
#include <string>

namespace {

template <class F>
FormBehaviour& Open() {
    return The<F>();
}

constexpr FormBehaviour& (*Opened[])() = {Open<frmQuickStart>,  Open<frmQuickStart2>, Open<frmQuickStart3>,
                                          Open<frmQuickStart4>, Open<frmQuickStart5>, Open<frmQuickStart6>,
                                          Open<frmQuickStart7>, Open<frmQuickStart8>};

/// Size of a page in average letters and lines.
constexpr int LettersAcross = 120;
constexpr int LinesDown = 41;
constexpr int Margin = 16; // pixels
constexpr int Gap = 10;

void SetTag(QWidget& control, MessageId text) {
    control.setProperty("Tag", text.Number);
}

/// A caption that is clicked: shaded under the mouse, bold while it stands for the page that is open.
class ClickLabel final : public QToolButton {
public:
    ClickLabel() {
        setFocusPolicy(Qt::StrongFocus);
        setCursor(Qt::PointingHandCursor);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        const QFontMetrics metrics(Bold());
        return metrics.size(Qt::TextShowMnemonic, text()) + QSize(2 * Gap, Gap);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const bool isShaded = isEnabled() && underMouse();
        if (isShaded) ShadeObject(painter, rect());
        if (isChecked()) {
            painter.setFont(Bold());
            painter.fillRect(0, 0, 3, height(), palette().highlight());
        }
        const bool leads = isEnabled() && !isCheckable();
        painter.setPen(isShaded ? QColor(Qt::white)
                                : palette().color(leads ? QPalette::Link : QPalette::ButtonText));
        painter.drawText(rect().adjusted(Gap, 0, -Gap, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, text());
        if (!hasFocus()) return;
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
        QToolButton::keyPressEvent(event);
    }

private:
    QFont Bold() const {
        QFont bold = font();
        bold.setBold(true);
        return bold;
    }
};

QLabel* NewText(MessageId text) {
    auto* label = new QLabel;
    SetTag(*label, text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QPushButton* NewButton(const char* name, MessageId caption) {
    auto* button = new QPushButton;
    button->setObjectName(QLatin1String(name));
    SetTag(*button, caption);
    return button;
}

} // namespace

QuickStartPage::QuickStartPage(Page page, MessageId title) : page_(page), title_(title) {
    SetTag(*this, msg::pageQuickStart);
    auto* frame = new QVBoxLayout(this);
    frame->setContentsMargins(0, 0, 0, Gap);
    frame->setSpacing(Gap);
    MakeTitle(*frame);
    auto* middle = new QHBoxLayout;
    middle->setContentsMargins(Gap, 0, Gap, 0);
    middle->setSpacing(Margin);
    middle->addWidget(MakeLabels());
    middle->addWidget(MakePage(), 1);
    frame->addLayout(middle, 1);
    MakeButtons(*frame);
}

// ---- the frame ----

void QuickStartPage::MakeTitle(QLayout& frame) {
    auto* picQ1 = new TitleBox;
    picQ1->setObjectName(QStringLiteral("picQ1"));
    lblQ1 = new QLabel;
    lblQ1->setObjectName(QStringLiteral("lblQ1"));
    lblQ1->setTextFormat(Qt::PlainText);
    SetTag(*lblQ1, title_);
    auto* title = new QHBoxLayout(picQ1);
    title->setContentsMargins(Margin, Gap, Margin, Gap);
    title->addWidget(lblQ1);
    frame.addWidget(picQ1);
}

/// The last label has its name from the time when taking orders was a page of its own.
QWidget* QuickStartPage::MakeLabels() {
    struct Label {
        const char* Name;
        MessageId Caption;
        Page Opens;
    };
    constexpr std::array<Label, 7> labels{{{"lblOverview1", msg::PageOverview, Overview},
                                           {"lblSetup1", msg::PageSetupTables, SetupTables},
                                           {"lblAdd1", msg::PageAddMasters, AddMasters},
                                           {"lblDownload1", msg::PageDownload, Download},
                                           {"lblUpload1", msg::PageUpload, Upload},
                                           {"lblExport1", msg::PageExport, Export},
                                           {"lblEnter1", msg::PageAdvanced, Advanced}}};
    auto* box = new QWidget;
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    for (const Label& each : labels) {
        auto* label = new ClickLabel;
        label->setObjectName(QLatin1String(each.Name));
        SetTag(*label, each.Caption);
        label->setCheckable(true);
        label->setChecked(each.Opens == page_);
        column->addWidget(label);
    }
    column->addStretch();
    return box;
}

/// Scrolls where the screen is too small for it, or the letters are large.
QScrollArea* QuickStartPage::MakePage() {
    auto* area = new QScrollArea;
    area->setObjectName(QStringLiteral("scrPage"));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, Gap, 0); // off the bar
    grdPage = new QGridLayout;
    grdPage->setHorizontalSpacing(Gap);
    grdPage->setVerticalSpacing(Margin);
    grdPage->setColumnStretch(1, 1);
    column->addLayout(grdPage);
    column->addStretch();
    area->setWidget(page);
    return area;
}

void QuickStartPage::MakeButtons(QLayout& frame) {
    QPushButton* cmdPrevious = NewButton("cmdPrevious", msg::QuickPrevious);
    QPushButton* cmdNext = NewButton("cmdNext", msg::QuickNext);
    QPushButton* cmdOK = NewButton("cmdOK", msg::QuickClose);
    QPushButton* cmdHelp = NewButton("cmdHelp", msg::Help);
    cmdPrevious->setEnabled(page_ > 0);
    cmdNext->setEnabled(page_ + 1 < Pages);
    for (const auto& [key, button] : {std::pair{Qt::Key_Left, cmdPrevious}, {Qt::Key_Right, cmdNext}})
        connect(new QShortcut(QKeySequence(Qt::ALT | key), this), &QShortcut::activated, button,
                &QPushButton::click);

    auto* row = new QWidget;
    row->setObjectName(QStringLiteral("picButton"));
    buttons_ = new QHBoxLayout(row);
    buttons_->setContentsMargins(Margin, 0, Margin, 0);
    buttons_->addWidget(cmdPrevious);
    buttons_->addWidget(cmdNext);
    buttons_->addStretch();
    buttons_->addWidget(cmdOK);
    buttons_->addWidget(cmdHelp);
    frame.addWidget(row);
}

// ---- what a page holds ----

QLabel& QuickStartPage::AddText(MessageId text) {
    QLabel* label = NewText(text);
    grdPage->addWidget(label, grdPage->rowCount(), 0, 1, 2);
    return *label;
}

QAbstractButton& QuickStartPage::AddLabel(const char* name, MessageId caption) {
    auto* label = new ClickLabel;
    label->setObjectName(QLatin1String(name));
    SetTag(*label, caption);
    grdPage->addWidget(label, grdPage->rowCount(), 0, 1, 2);
    return *label;
}

QAbstractButton& QuickStartPage::AddStep(const char* name, MessageId caption, const char* picture,
                                         MessageId text, const char* topic) {
    const bool isLabel = std::string_view(name).starts_with("lbl");
    QAbstractButton* button = isLabel ? static_cast<QAbstractButton*>(new ClickLabel) : new QPushButton;
    button->setObjectName(QLatin1String(name));
    SetTag(*button, caption);
    if (!isLabel) pictures_.emplace_back(button, picture);
    const int row = grdPage->rowCount();
    grdPage->addWidget(button, row, 0, Qt::AlignTop);
    QLabel* about = NewText(text);
    // Its first line beside that of the button.
    about->setContentsMargins(0, (button->sizeHint().height() - about->fontMetrics().lineSpacing()) / 2, 0,
                              0);
    grdPage->addWidget(about, row, 1);
    if (topic) AddHelp(name + 3, topic, caption);
    return *button;
}

void QuickStartPage::AddHelp(const char* name, const char* topic, MessageId about) {
    auto* image = new QToolButton;
    image->setObjectName(QStringLiteral("img") + QLatin1String(name) + QStringLiteral("Help"));
    image->setProperty("HelpTopic", QString::fromLatin1(topic));
    image->setAutoRaise(true);
    image->setFocusPolicy(Qt::StrongFocus);
    image->setToolTip(PlainTip(ToQt(Text(msg::TipTourHelp))));
    image->setAccessibleName(ToQt(Words(about, msg::Help)));
    pictures_.emplace_back(image, "helpico16-256");
    grdPage->addWidget(image, grdPage->rowCount() - 1, 2, Qt::AlignTop);
}

// ---- the page at work ----

void QuickStartPage::Form_Load() {
    Trace("Form_Load");
    setWindowIcon(Picture("quickstart"));
    for (const auto& [button, picture] : pictures_) button->setIcon(Picture(picture));
    for (auto* label : findChildren<QToolButton*>()) {
        if (label->isCheckable()) label->setToolTip(PlainTip(ToQt(Text(msg::TipPage))));
    }
    auto* cmdOK = findChild<QPushButton*>(QStringLiteral("cmdOK"));
    auto* cmdNext = findChild<QPushButton*>(QStringLiteral("cmdNext"));
    cmdOK->setToolTip(PlainTip(ToQt(Text(msg::TipTourClose))));
    QPushButton* const pressed = cmdNext->isEnabled() ? cmdNext : cmdOK;
    pressed->setDefault(true);
    pressed->setFocus();
    if (title_ != msg::pageQuickStart)
        setWindowTitle(windowTitle() + QStringLiteral(" - ") + ToQt(Text(title_)));
    // All pages alike, so that nothing moves when they are turned.
    const QFontMetrics letters = fontMetrics();
    const QSize usual(LettersAcross * letters.averageCharWidth(), LinesDown * letters.lineSpacing());
    resize(usual.boundedTo(screen()->availableSize() - QSize(Gap, 4 * Gap)));
}

void QuickStartPage::Trace(std::string_view routine) const {
    TraceEvent(std::string(metaObject()->className()) + ":" + std::string(routine));
}

void QuickStartPage::GoTo(std::string_view handler, Page page) {
    Trace(handler);
    const QPoint corner = pos();
    const QSize extent = size();
    const Qt::WindowStates state = windowState();
    Unload();
    FormBehaviour& next = Opened[page]();
    if (next.IsGone()) return;
    next.Window().move(corner);
    next.Window().resize(extent);
    next.Window().setWindowState(state);
    next.Show();
}

void QuickStartPage::Lead(std::string_view handler, const std::function<void()>& open) {
    Trace(handler);
    OpenToConfigure(open);
}

void QuickStartPage::lblOverview1_Click() {
    GoTo("lblOverview1_Click", Overview);
}

void QuickStartPage::lblSetup1_Click() {
    GoTo("lblSetup1_Click", SetupTables);
}

void QuickStartPage::lblAdd1_Click() {
    GoTo("lblAdd1_Click", AddMasters);
}

void QuickStartPage::lblDownload1_Click() {
    GoTo("lblDownload1_Click", Download);
}

void QuickStartPage::lblUpload1_Click() {
    GoTo("lblUpload1_Click", Upload);
}

void QuickStartPage::lblExport1_Click() {
    GoTo("lblExport1_Click", Export);
}

void QuickStartPage::lblEnter1_Click() {
    GoTo("lblEnter1_Click", Advanced);
}

void QuickStartPage::cmdPrevious_Click() {
    GoTo("cmdPrevious_Click", static_cast<Page>(page_ - 1));
}

void QuickStartPage::cmdNext_Click() {
    GoTo("cmdNext_Click", static_cast<Page>(page_ + 1));
}

void QuickStartPage::cmdOK_Click() {
    Trace("cmdOK_Click");
    Unload();
}
