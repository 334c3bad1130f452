#include "LayoutCheck.h"

#include "core/Catalogue.h"
#include "core/SafeFile.h"
#include "platform/ScreenFit.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitterHandle>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTextEdit>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr double LeastContrast = 4.5;

QString NameOf(const QWidget& widget) {
    const QString name = widget.objectName();
    return name.isEmpty() ? QString::fromLatin1(widget.metaObject()->className()) : name;
}

QString Say(const QSize& size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

/// What has parts of its own, which are the toolkit's.
bool IsWhole(const QWidget& widget) {
    return qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget) ||
           qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QCalendarWidget*>(&widget) ||
           qobject_cast<const QTabBar*>(&widget) || qobject_cast<const QMenuBar*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QSplitterHandle*>(&widget) || qobject_cast<const QScrollBar*>(&widget);
}

/// The controls that show, whatever holds them first.
void Collect(const QWidget& around, std::vector<const QWidget*>& found) {
    for (const QObject* child : around.children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (!widget || widget->isWindow() || !widget->isVisible()) continue;
        found.push_back(widget);
        if (!IsWhole(*widget)) Collect(*widget, found);
    }
}

std::vector<const QWidget*> ShownIn(const QWidget& window) {
    std::vector<const QWidget*> found;
    Collect(window, found);
    return found;
}

QRect PlaceIn(const QWidget& window, const QWidget& widget) {
    return {widget.mapTo(&window, QPoint()), widget.size()};
}

// ---- what is cut ----

/// A wrapped text breaks at blanks and hyphens.
int WidestWord(const QLabel& label) {
    int widest = 0;
    const auto flags = label.buddy() ? Qt::TextShowMnemonic : 0;
    for (const QString& word : label.text().split(QRegularExpression(QStringLiteral("[\\s-]"))))
        widest = std::max(widest, label.fontMetrics().size(flags, word).width());
    return widest;
}

/// The room that a label's text wants; a wrapped one wants height for the width that it has.
QSize RoomFor(const QLabel& label) {
    if (!label.wordWrap()) return label.sizeHint();
    const int margins = label.width() - label.contentsRect().width() + 2 * label.margin();
    return {WidestWord(label) + margins, label.heightForWidth(label.width())};
}

QSize TextSize(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().size(Qt::TextShowMnemonic, text);
}

/// The style makes a push button wider than its text needs.
QSize RoomFor(const QAbstractButton& button) {
    if (!qobject_cast<const QPushButton*>(&button)) return button.minimumSizeHint();
    constexpr int Edges = 10; // pixels
    return {TextSize(button, button.text()).width() + Edges, button.minimumSizeHint().height()};
}

QString CutTabs(const QTabBar& tabs) {
    for (int tab = 0; tab < tabs.count(); ++tab) {
        if (tabs.isTabVisible(tab) && !tabs.rect().contains(tabs.tabRect(tab))) return tabs.tabText(tab);
    }
    return {};
}

QString CutMenus(const QMenuBar& bar) {
    for (const QAction* action : bar.actions()) {
        if (action->isVisible() && !bar.rect().contains(bar.actionGeometry(const_cast<QAction*>(action))))
            return action->text();
    }
    return {};
}

/// A choice that shows only in part.
QString CutChoice(const QComboBox& box) {
    QStyleOptionComboBox option;
    option.initFrom(&box);
    option.editable = box.isEditable();
    option.frame = box.hasFrame();
    const QRect field =
        box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
    const QString text = box.currentText();
    const int wants = box.fontMetrics().horizontalAdvance(text);
    if (wants <= field.width()) return {};
    return QStringLiteral("%1 (%2 of %3)").arg(text).arg(field.width()).arg(wants);
}

QString CutHeadings(const QHeaderView& headings) {
    if (headings.orientation() != Qt::Horizontal || !headings.model()) return {};
    const int columns = std::min(headings.count(), 40); // of a wide table the first
    for (int column = 0; column < columns; ++column) {
        if (headings.isSectionHidden(column)) continue;
        QString text = headings.model()->headerData(column, Qt::Horizontal).toString();
        if (headings.fontMetrics().boundingRect(QRect(), 0, text).width() > headings.sectionSize(column))
            return text;
    }
    return {};
}

void FindCut(const QWidget& widget, QStringList& problems) {
    const auto report = [&](const QString& text, const QSize& room) {
        if (room.width() <= widget.width() && room.height() <= widget.height()) return;
        problems << QStringLiteral("%1 is cut: %2 of %3 for \"%4\"")
                        .arg(NameOf(widget), Say(widget.size()), Say(room), text.left(60));
    };
    const auto reportPart = [&](const QString& part) {
        if (!part.isEmpty())
            problems << QStringLiteral("%1 cuts \"%2\" at %3 pixels")
                            .arg(NameOf(widget), part)
                            .arg(widget.width());
    };
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        if (!label->text().isEmpty()) report(label->text(), RoomFor(*label));
    } else if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        if (!button->text().isEmpty()) report(button->text(), RoomFor(*button));
    } else if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) {
        report(group->title(), group->minimumSizeHint());
    } else if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        reportPart(CutTabs(*tabs));
    } else if (const auto* bar = qobject_cast<const QMenuBar*>(&widget)) {
        reportPart(CutMenus(*bar));
    } else if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
        report(QString(), {0, box->minimumSizeHint().height()});
        reportPart(CutChoice(*box));
    } else if (qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget)) {
        report(QString(), {0, widget.minimumSizeHint().height()});
    } else if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget)) {
        for (const auto* headings : view->findChildren<QHeaderView*>())
            if (headings->isVisible()) reportPart(CutHeadings(*headings));
    }
}

/// Whether one is meant to be larger than what shows of it.
bool IsScrolled(const QWidget& widget) {
    const QWidget* viewport = widget.parentWidget();
    const auto* area = viewport ? qobject_cast<const QScrollArea*>(viewport->parentWidget()) : nullptr;
    return area && area->widget() == &widget;
}

void FindMisplaced(const QWidget& widget, QStringList& problems) {
    const QWidget& around = *widget.parentWidget();
    if (!IsScrolled(widget) && !around.rect().contains(widget.geometry()))
        problems << QStringLiteral("%1 lies beyond %2").arg(NameOf(widget), NameOf(around));
    for (const QObject* child : around.children()) {
        if (child == &widget) break; // each pair once
        const auto* other = qobject_cast<const QWidget*>(child);
        if (!other || other->isWindow() || !other->isVisible()) continue;
        // The toolkit lets a strip of tabs reach over the frame of its pages.
        if (qobject_cast<const QTabBar*>(other) || qobject_cast<const QTabBar*>(&widget)) continue;
        if (other->geometry().intersects(widget.geometry()))
            problems << QStringLiteral("%1 lies upon %2").arg(NameOf(widget), NameOf(*other));
    }
}

// ---- keys ----

bool IsReached(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) != 0 &&
           !widget.focusProxy();
}

bool SameRow(const QRect& a, const QRect& b) {
    return a.top() <= b.center().y() && b.center().y() <= a.bottom();
}

/// Those that the tab key reaches, in its order.
std::vector<const QWidget*> TabOrder(const QWidget& window) {
    const std::vector<const QWidget*> shown = ShownIn(window);
    std::vector<const QWidget*> order;
    for (const QWidget* at = window.nextInFocusChain(); at && at != &window; at = at->nextInFocusChain()) {
        if (IsReached(*at) && std::find(shown.begin(), shown.end(), at) != shown.end()) order.push_back(at);
    }
    // The order is a ring: it is read from the control that stands highest.
    const auto highest = [&](const QWidget* a, const QWidget* b) {
        const QRect one = PlaceIn(window, *a), other = PlaceIn(window, *b);
        return SameRow(one, other) ? one.left() < other.left() : one.top() < other.top();
    };
    std::rotate(order.begin(), std::min_element(order.begin(), order.end(), highest), order.end());
    return order;
}

/// Whether a person would look for `later` before `earlier`: above it and no further to the right, or left of
/// it in its row.
bool ComesFirst(const QRect& later, const QRect& earlier) {
    if (later.bottom() <= earlier.top() && later.left() <= earlier.left()) return true;
    return later.right() <= earlier.left() && SameRow(later, earlier) && SameRow(earlier, later);
}

/// The two that hold a pair of controls side by side: boxes are gone through one behind the other.
std::pair<const QWidget*, const QWidget*> Branches(const QWidget& a, const QWidget& b) {
    const QWidget* left = &a;
    while (left->parentWidget() && !left->parentWidget()->isAncestorOf(&b)) left = left->parentWidget();
    const QWidget* right = &b;
    while (right->parentWidget() && !right->parentWidget()->isAncestorOf(&a)) right = right->parentWidget();
    return {left, right};
}

/// The order that is meant, whatever stands further left: the way out comes first among the buttons of its
/// row, the help last; and what takes from lists is behind them.
bool IsMeant(const QWidget& later, const QWidget& earlier) {
    const QString name = later.objectName();
    const QString before = earlier.objectName();
    if (name == QLatin1String("cmdHelp")) return true;
    // Both are beside the work of their window; the first comes by a key of its own.
    if (name == QLatin1String("txtFind") || name == QLatin1String("chkOnTop")) return true;
    if (before == QLatin1String("cmdOK") || before == QLatin1String("cmdCancel"))
        return SameRow(PlaceIn(*later.window(), later), PlaceIn(*earlier.window(), earlier));
    return (before == QLatin1String("lstSelected") || before == QLatin1String("lstLiteral")) &&
           name.startsWith(QLatin1String("cmdRemove"));
}

void FindJumps(const QWidget& window, QStringList& problems) {
    const std::vector<const QWidget*> order = TabOrder(window);
    for (std::size_t later = 1; later < order.size(); ++later) {
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            const QWidget &one = *order[later], &other = *order[earlier];
            const auto [first, second] = Branches(one, other);
            if (IsMeant(one, other) || !ComesFirst(PlaceIn(window, *first), PlaceIn(window, *second)) ||
                !ComesFirst(PlaceIn(window, one), PlaceIn(window, other)))
                continue;
            problems << QStringLiteral("the tab key reaches %1 only behind %2")
                            .arg(NameOf(*order[later]), NameOf(*order[earlier]));
            break;
        }
    }
}

bool Destroys(const QAbstractButton& button) {
    static const QRegularExpression words(QStringLiteral("Delete|Clear|Reset|Purge|Remove|Restore|Discard"));
    return button.objectName().contains(words);
}

void FindDefaults(const QWidget& window, QStringList& problems) {
    const auto* dialog = qobject_cast<const QDialog*>(&window);
    if (!dialog) return;
    QStringList defaults;
    for (const auto* button : dialog->findChildren<QPushButton*>()) {
        if (!button->isVisible() || !button->isDefault()) continue;
        defaults << NameOf(*button);
        if (Destroys(*button)) problems << QStringLiteral("Enter presses %1").arg(NameOf(*button));
    }
    if (defaults.size() > 1)
        problems << QStringLiteral("two default buttons: ") + defaults.join(QLatin1Char(' '));
}

/// Whether Esc finds a button to press, or there is nothing to press at all.
bool HasWayOut(const QWidget& window) {
    const auto buttons = window.findChildren<const QPushButton*>();
    const bool hasAny =
        std::any_of(buttons.begin(), buttons.end(), [](const auto* b) { return b->isVisible(); });
    if (!qobject_cast<const QDialog*>(&window) || !hasAny) return true;
    // The shared question has an answer for it, and the manager's window is put away.
    for (const char* name : {"cmdCancel", "cmdOK", "cmdNo", "cmdHide"}) {
        const auto* button = window.findChild<const QAbstractButton*>(QString::fromLatin1(name));
        if (button && button->isVisible()) return true;
    }
    return false;
}

// ---- contrast ----

double Luminance(QRgb colour) {
    const auto linear = [](int part) {
        const double value = part / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

double Contrast(double a, double b) {
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// What stands out most from the colour that is there most.
double ContrastIn(const QImage& picture, const QRect& place) {
    std::map<QRgb, int> colours;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) ++colours[picture.pixel(x, y)];
    }
    if (colours.empty()) return 21;
    const auto ground = std::max_element(colours.begin(), colours.end(),
                                         [](const auto& a, const auto& b) { return a.second < b.second; });
    const double behind = Luminance(ground->first);
    double most = 1;
    for (const auto& [colour, count] : colours) most = std::max(most, Contrast(Luminance(colour), behind));
    return most;
}

QString WordsOf(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
    return {};
}

/// The colours of a view's first rows, as its model says them or else the palette.
void FindFaintCells(const QAbstractItemView& view, QStringList& problems) {
    const QAbstractItemModel* model = view.model();
    if (!model) return;
    const QPalette& palette = view.palette();
    for (int row = 0; row < std::min(model->rowCount(), 20); ++row) {
        for (int column = 0; column < std::min(model->columnCount(), 10); ++column) {
            const QModelIndex cell = model->index(row, column);
            if (!(model->flags(cell) & Qt::ItemIsEnabled) || !view.isEnabled()) continue;
            const auto colour = [&](int role, QPalette::ColorRole usual) {
                const QVariant own = cell.data(role);
                return own.isValid() ? own.value<QBrush>().color() : palette.color(QPalette::Active, usual);
            };
            const double contrast = Contrast(Luminance(colour(Qt::ForegroundRole, QPalette::Text).rgb()),
                                             Luminance(colour(Qt::BackgroundRole, QPalette::Base).rgb()));
            if (contrast >= LeastContrast) continue;
            problems << QStringLiteral("row %1 of %2 has a contrast of %3")
                            .arg(row + 1)
                            .arg(NameOf(view))
                            .arg(contrast, 0, 'f', 1);
            return;
        }
    }
}

/// A text that is a third longer, of words that wrap as others do.
std::string Stretched(const std::string& line) {
    static const std::string Filler =
        "nemo enim ipsam quia voluptas sit aspernatur aut odit fugit sed consequuntur "
        "magni dolores eos qui ratione sequi nesciunt neque porro quisquam est dolorem ";
    const std::size_t end = line.find_last_not_of(" \t:.?!") + 1;
    if (end == 0) return line;
    std::string more = Filler;
    while (more.size() < line.size()) more += Filler;
    more.resize((end + 2) / 3);
    if (more.back() == ' ') more.back() = 'a';
    if (end > 8) more.front() = ' ';
    return line.substr(0, end) + more + line.substr(end);
}

} // namespace

QStringList LayoutProblems(const QWidget& window) {
    QStringList problems;
    if (window.isWindow() && window.size() != window.size().boundedTo(ScreenFit::RoomOn(*window.screen())))
        problems << QStringLiteral("the window is too large: ") + Say(window.size());
    for (const QWidget* widget : ShownIn(window)) {
        FindCut(*widget, problems);
        FindMisplaced(*widget, problems);
    }
    return problems;
}

QStringList KeyProblems(const QWidget& window) {
    QStringList problems;
    for (const QWidget* widget : TabOrder(window)) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
        if (!spoken || spoken->text(QAccessible::Name).isEmpty())
            problems << QStringLiteral("%1 has no name to be read aloud").arg(NameOf(*widget));
    }
    FindJumps(window, problems);
    FindDefaults(window, problems);
    if (!HasWayOut(window)) problems << QStringLiteral("Esc does nothing");
    return problems;
}

QStringList ContrastProblems(QWidget& window) {
    QStringList problems;
    const QImage picture = window.grab().toImage();
    for (const QWidget* widget : ShownIn(window)) {
        if (const auto* view = qobject_cast<const QAbstractItemView*>(widget))
            FindFaintCells(*view, problems);
        if (!widget->isEnabled() || WordsOf(*widget).trimmed().isEmpty()) continue;
        if (widget->visibleRegion().boundingRect() != widget->rect()) continue; // in part scrolled away
        const QRect place(widget->mapTo(&window, QPoint()), widget->size());
        const double contrast = ContrastIn(picture, place);
        if (contrast < LeastContrast)
            problems << QStringLiteral("%1 has a contrast of %2: \"%3\"")
                            .arg(NameOf(*widget))
                            .arg(contrast, 0, 'f', 1)
                            .arg(WordsOf(*widget).left(60));
    }
    return problems;
}

bool Scrolls(const QWidget& window) {
    return window.findChild<QScrollArea*>(QLatin1String(ScreenFit::AreaName)) != nullptr;
}

void WriteStretchedTexts(const std::string& path) {
    std::string rows;
    for (std::size_t at = 0; at < CatalogueRowCount; ++at) {
        const std::string words = CatalogueRows[at].Words;
        rows += std::to_string(CatalogueRows[at].Number) + "\t\t\t\"";
        std::string line;
        for (std::size_t from = 0; from <= words.size(); from += line.size() + 1) {
            line = words.substr(from, words.find('\n', from) - from);
            if (from > 0) rows += "\\n";
            // The head of a report stands over its columns.
            for (const char c : line.starts_with('|') ? line : Stretched(line)) {
                if (c == '\t' || c == '\\') rows += '\\';
                rows += c == '\t' ? 't' : c;
            }
        }
        rows += "\"\n";
    }
    WriteWholeFile(path, rows);
}
