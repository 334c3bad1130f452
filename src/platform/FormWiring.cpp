// How handlers and help find their controls: by names.

#include "core/Globals.h"
#include "core/Trace.h"
#include "help/HTMLHelp.h"
#include "help/HelpTopics.h"
#include "platform/Form.h"
#include "platform/GridView.h"
#include "platform/HelpKeys.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

/// A handler's name cut at its last underscore; false when it has none.
bool SplitHandler(const QMetaMethod& method, QString& control, QString& event) {
    const QString name = QString::fromLatin1(method.name());
    const qsizetype cut = name.lastIndexOf(QLatin1Char('_'));
    if (cut <= 0) return false;
    control = name.left(cut);
    event = name.mid(cut + 1);
    return control != QLatin1String("Form");
}

/// The index of an element of a control array: "cmdX_3" is element 3 of "cmdX"; -1 for any other.
int ElementIndex(const QString& name, const QString& control) {
    if (!name.startsWith(control + QLatin1Char('_'))) return -1;
    bool isNumber = false;
    const int index = name.mid(control.size() + 1).toInt(&isNumber);
    return isNumber ? index : -1;
}

/// A handler of a form: its method, and whose it is.
struct Handler {
    QObject* Owner;
    int Method;
    QString Control;
    QString Event;
    bool TakesIndex;
};

/// Those of the form itself and of its parts.
std::vector<Handler> HandlersOf(QWidget& window) {
    const bool isDialog = qobject_cast<const QDialog*>(&window);
    const QMetaObject& base = isDialog ? QDialog::staticMetaObject : QMainWindow::staticMetaObject;
    std::vector<std::pair<QObject*, int>> owners{{&window, base.methodCount()}};
    for (auto* part : window.findChildren<FormPart*>(Qt::FindDirectChildrenOnly))
        owners.emplace_back(part, FormPart::staticMetaObject.methodCount());
    std::vector<Handler> handlers;
    for (const auto& [owner, first] : owners) {
        for (int at = first; at < owner->metaObject()->methodCount(); ++at) {
            const QMetaMethod method = owner->metaObject()->method(at);
            Handler handler{owner, at, {}, {}, method.parameterCount() == 1};
            if (SplitHandler(method, handler.Control, handler.Event)) handlers.push_back(handler);
        }
    }
    return handlers;
}

/// Names the topic that a control opens.
constexpr const char* HelpTopicProperty = "HelpTopic";

/// Not what Qt makes for itself inside a control: a combo box's list, a table's corner button.
bool IsOurs(const QObject& object) {
    if (object.objectName().startsWith(QLatin1String("qt_"))) return false;
    for (const QObject* around = object.parent(); around; around = around->parent()) {
        if (qobject_cast<const QAbstractItemView*>(around) || qobject_cast<const QComboBox*>(around) ||
            qobject_cast<const QLineEdit*>(around) || qobject_cast<const QAbstractSpinBox*>(around) ||
            qobject_cast<const QTabBar*>(around) || qobject_cast<const QCalendarWidget*>(around)) {
            return false;
        }
    }
    return true;
}

/// What an operator takes for something that does a thing when it is clicked. A box that is ticked
/// and a choice of several hold a state, and need not.
bool IsClickable(const QObject& object) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&object)) {
        const bool holdsState =
            qobject_cast<const QCheckBox*>(button) || qobject_cast<const QRadioButton*>(button);
        return !holdsState && button->isEnabled();
    }
    if (const auto* action = qobject_cast<const QAction*>(&object)) {
        return !action->menu() && !action->isSeparator() && action->isEnabled();
    }
    if (const auto* label = qobject_cast<const QLabel*>(&object)) {
        return label->testAttribute(Qt::WA_SetCursor) && label->cursor().shape() == Qt::PointingHandCursor;
    }
    return false;
}

/// A click into a line; in one that cannot be typed into the space bar is the same.
class LineClick final : public QObject {
public:
    LineClick(QLineEdit& line, QObject& context, std::function<void()> call)
        : QObject(&context),
          line_(line),
          call_(std::move(call)) {
        line.installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        const bool isClick = event->type() == QEvent::MouseButtonRelease &&
                             static_cast<const QMouseEvent*>(event)->button() == Qt::LeftButton;
        const bool isSpace = event->type() == QEvent::KeyPress && line_.isReadOnly() &&
                             static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Space;
        if (isClick || isSpace) QTimer::singleShot(0, this, [this] { call_(); }); // behind the event itself
        return isSpace;
    }

private:
    QLineEdit& line_;
    std::function<void()> call_;
};

/// Connects an event of a control to a call with the control's index, or with the column where the
/// event has one. False when a control of this kind has no such event.
bool ConnectEvent(QObject& control, const QString& event, int index, QObject& context,
                  const std::function<void(int)>& call) {
    const auto run = [call, index] { call(index); };
    if (event == QLatin1String("Click")) {
        if (auto* button = qobject_cast<QAbstractButton*>(&control))
            return QObject::connect(button, &QAbstractButton::clicked, &context, run);
        if (auto* action = qobject_cast<QAction*>(&control))
            return QObject::connect(action, &QAction::triggered, &context, run);
        if (auto* box = qobject_cast<QComboBox*>(&control))
            return QObject::connect(box, &QComboBox::activated, &context, run);
        if (auto* list = qobject_cast<QListWidget*>(&control))
            return QObject::connect(list, &QListWidget::itemSelectionChanged, &context, run);
        if (auto* line = qobject_cast<QLineEdit*>(&control)) {
            new LineClick(*line, context, run);
            return true;
        }
        if (auto* view = qobject_cast<QAbstractItemView*>(&control))
            return QObject::connect(view, &QAbstractItemView::clicked, &context, run);
    } else if (event == QLatin1String("DblClick") || event == QLatin1String("RequestEdit")) {
        if (auto* view = qobject_cast<QAbstractItemView*>(&control))
            return QObject::connect(view, &QAbstractItemView::doubleClicked, &context, run);
    } else if (event == QLatin1String("Change")) {
        if (auto* edit = qobject_cast<QLineEdit*>(&control))
            return QObject::connect(edit, &QLineEdit::textChanged, &context, run);
        if (auto* box = qobject_cast<QComboBox*>(&control))
            return QObject::connect(box, &QComboBox::editTextChanged, &context, run);
        if (auto* spin = qobject_cast<QSpinBox*>(&control))
            return QObject::connect(spin, &QSpinBox::valueChanged, &context, run);
        if (auto* text = qobject_cast<QPlainTextEdit*>(&control))
            return QObject::connect(text, &QPlainTextEdit::textChanged, &context, run);
    } else if (event == QLatin1String("DateClick")) {
        // Enter on a date is the same as a click on it.
        if (auto* calendar = qobject_cast<QCalendarWidget*>(&control)) {
            QObject::connect(calendar, &QCalendarWidget::activated, &context, run);
            return QObject::connect(calendar, &QCalendarWidget::clicked, &context, run);
        }
    } else if (event == QLatin1String("ColumnClick")) {
        if (auto* view = qobject_cast<QTableView*>(&control))
            return QObject::connect(view->horizontalHeader(), &QHeaderView::sectionClicked, &context, call);
    } else if (event == QLatin1String("SelChange")) {
        if (auto* grid = qobject_cast<GridView*>(&control))
            return QObject::connect(grid, &GridView::SelChange, &context, run);
    } else if (event == QLatin1String("Timer")) {
        if (auto* timer = qobject_cast<QTimer*>(&control))
            return QObject::connect(timer, &QTimer::timeout, &context, run);
    }
    return false;
}

/// Whether a handler for `name` serves a control: it bears that name, or is an element of that array.
bool Serves(const QString& name, const QObject& control) {
    return control.objectName() == name || ElementIndex(control.objectName(), name) >= 0;
}

/// Whether a control opens a topic of the help, unless the form has a handler for it.
bool OpensHelp(const QObject& control) {
    if (!qobject_cast<const QAbstractButton*>(&control)) return false;
    const QString name = control.objectName();
    return name == QLatin1String("cmdHelp") || control.property(HelpTopicProperty).isValid() ||
           (name.startsWith(QLatin1String("img")) && name.endsWith(QLatin1String("Help")));
}

/// The topic of a control, or of what it is a part of, where these have one that is not their form's.
QVariant TopicAt(const QObject* control) {
    for (; control; control = control->parent()) {
        QVariant topic = control->property(HelpTopicProperty);
        if (topic.isValid()) return topic;
    }
    return {};
}

} // namespace

// ---- handlers ----

void FormBehaviour::RunMethod(QObject& owner, int method, int index) {
    if (IsOver()) return;
    Run([&] {
        void* arguments[] = {nullptr, &index};
        QMetaObject::metacall(&owner, QMetaObject::InvokeMetaMethod, method, arguments);
    });
}

void FormBehaviour::WireControl(QObject& control) {
    bool handled = false;
    for (const Handler& handler : HandlersOf(Window())) {
        if (!Serves(handler.Control, control)) continue;
        ConnectEvent(control, handler.Event, ElementIndex(control.objectName(), handler.Control),
                     *handler.Owner, [this, owner = handler.Owner, method = handler.Method](int index) {
                         RunMethod(*owner, method, index);
                     });
        if (handler.Event == QLatin1String("Click")) handled = true;
    }
    if (!handled) WireHelp(control);
}

void FormBehaviour::WireControls() {
    for (QObject* child : Window().findChildren<QObject*>()) {
        if (IsOurs(*child)) WireControl(*child);
    }
}

// ---- help ----

std::string FormBehaviour::HelpTopic() const {
    return HelpTopicOfForm(const_cast<FormBehaviour*>(this)->Window().metaObject()->className());
}

/// Connects a help button, or the keys of the help for the window itself.
void FormBehaviour::WireHelp(QObject& control) {
    QWidget& window = Window();
    const auto show = [this, &window, &control] {
        if (IsOver()) return;
        Run([&] {
            const QString name =
                &control == &window ? QStringLiteral("OnHelp") : control.objectName() + "_Click";
            TraceEvent((QString::fromLatin1(window.metaObject()->className()) + ':' + name).toStdString());
            const QVariant topic = TopicAt(&control == &window ? window.focusWidget() : &control);
            ShowHelpTopic(topic.isValid() ? topic.toString().toStdString() : HelpTopic());
        });
    };
    if (&control == &window) {
        new HelpKeys(window, show);
    } else if (OpensHelp(control)) {
        auto& button = static_cast<QAbstractButton&>(control);
        button.setEnabled(true); // whatever its layout says
        QObject::connect(&button, &QAbstractButton::clicked, &window, show);
    }
}

// ---- what is not wired ----

QStringList FormBehaviour::WiringProblems() const {
    QWidget& window = const_cast<FormBehaviour*>(this)->Window();
    const QString form = QString::fromLatin1(window.metaObject()->className());
    const QList<QObject*> all = window.findChildren<QObject*>();
    const std::vector<Handler> handlers = HandlersOf(window);
    QStringList problems;
    for (const Handler& handler : handlers) {
        bool found = false;
        for (QObject* object : all) {
            if (!Serves(handler.Control, *object)) continue;
            found = true;
            QObject trial;
            if (!ConnectEvent(*object, handler.Event, -1, trial, [](int) {}))
                problems << QStringLiteral("%1: %2 has no event %3")
                                .arg(form, object->objectName(), handler.Event);
        }
        // The elements of an array are made when there are rows for them.
        const bool isArray = handler.TakesIndex && handler.Event != QLatin1String("ColumnClick");
        if (!found && !isArray) problems << QStringLiteral("%1 has no control %2").arg(form, handler.Control);
    }
    for (const QObject* object : all) {
        if (!IsOurs(*object) || !IsClickable(*object)) continue;
        const bool has =
            OpensHelp(*object) || std::any_of(handlers.begin(), handlers.end(), [&](const Handler& handler) {
                return Serves(handler.Control, *object);
            });
        const QString control = object->objectName().isEmpty()
                                    ? QStringLiteral("a nameless %1").arg(object->metaObject()->className())
                                    : object->objectName();
        if (!has) problems << QStringLiteral("%1: nothing handles %2").arg(form, control);
    }
    return problems;
}
