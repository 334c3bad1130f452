#include "platform/Form.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "help/HTMLHelp.h"
#include "help/HelpTopics.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/HelpKeys.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
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
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QWindow>

#include <algorithm>

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

/// A list that may be typed into announces a choice only when an entry was chosen: by itself it
/// also does when a text that was typed equals an entry.
void AnnounceOnlyChoices(QComboBox& box) {
    if (!box.isEditable()) return;
    box.setInsertPolicy(QComboBox::NoInsert);
    box.setCompleter(nullptr);
    QObject::disconnect(box.lineEdit(), &QLineEdit::editingFinished, &box, nullptr);
    QObject::disconnect(box.lineEdit(), &QLineEdit::returnPressed, &box, nullptr);
}

/// In a list with nothing selected an arrow on the first row, where the frame is when the list is
/// entered, selects that row. By itself the list would pass it by, and a key could never select it.
class FirstArrow final : public QObject {
public:
    explicit FirstArrow(QListWidget& list) : QObject(&list), list_(list) { list.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || list_.currentRow() != 0 || !list_.selectedItems().isEmpty())
            return false;
        const auto* key = static_cast<const QKeyEvent*>(event);
        const bool moves =
            key->key() == Qt::Key_Down || key->key() == Qt::Key_Up || key->key() == Qt::Key_Home;
        if (!moves || key->modifiers() != Qt::NoModifier) return false;
        list_.setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
        return true;
    }

private:
    QListWidget& list_;
};

/// A wheel that passes over a closed list or a number changes nothing: a choice loads a template over
/// what is on the screen, and nobody has meant it.
class NoWheel final : public QObject {
public:
    explicit NoWheel(QWidget& control) : QObject(&control) {
        control.setFocusPolicy(Qt::StrongFocus);
        control.installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Wheel) return false;
        event->ignore(); // what lies around it may scroll
        return true;
    }
};

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
        const QVariant topic = control->property(HelpTopicProperty);
        if (topic.isValid()) return topic;
    }
    return {};
}

/// The tab strip that has a widget for a page; nothing for any other widget.
QTabWidget* TabsAround(const QWidget& page) {
    const QObject* stack = page.parent();
    return stack ? qobject_cast<QTabWidget*>(stack->parent()) : nullptr;
}

/// Input controls keep what they hold: their tag is the number of a field, not of a text.
bool IsInput(const QObject& object) {
    return qobject_cast<const QLineEdit*>(&object) || qobject_cast<const QComboBox*>(&object);
}

void SetCaption(QObject& object, MessageId entry) {
    const QString caption = QString::fromStdString(CatalogueCaption(entry));
    const QString plain = QString::fromStdString(CatalogueText(entry));
    if (auto* button = qobject_cast<QAbstractButton*>(&object))
        button->setText(caption);
    else if (auto* label = qobject_cast<QLabel*>(&object))
        label->setText(label->buddy() ? caption : plain);
    else if (auto* action = qobject_cast<QAction*>(&object))
        action->setText(caption);
    else if (auto* menu = qobject_cast<QMenu*>(&object))
        menu->setTitle(caption);
    else if (auto* group = qobject_cast<QGroupBox*>(&object))
        group->setTitle(caption);
    else if (auto* widget = qobject_cast<QWidget*>(&object); widget && widget->isWindow())
        widget->setWindowTitle(plain);
    else if (auto* tabs = widget ? TabsAround(*widget) : nullptr)
        tabs->setTabText(tabs->indexOf(widget), caption);
}

/// The number that a control's tag holds, or nothing when it holds none.
std::optional<MessageId> TagOf(const QObject& object, const char* property) {
    bool isNumber = false;
    const int number = object.property(property).toString().toInt(&isNumber);
    if (!isNumber || number < 1 || number > 65535) return std::nullopt;
    return MessageId{static_cast<std::uint16_t>(number)};
}

/// Calls a function once, behind the first paint of a window or after a moment without one.
class BehindFirstPaint final : public QObject {
public:
    BehindFirstPaint(QWidget& window, std::function<void()> call) : QObject(&window), call_(std::move(call)) {
        window.installEventFilter(this);
        QTimer::singleShot(250, this, [this] { Fire(); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && !queued_) {
            queued_ = true;
            QTimer::singleShot(0, this, [this] { Fire(); });
        }
        return false;
    }

private:
    void Fire() {
        if (!call_) return;
        const auto call = std::exchange(call_, nullptr);
        deleteLater();
        call();
    }

    std::function<void()> call_;
    bool queued_ = false;
};

/// A window that is shown while a modal one stands belongs to that one: only so can it be reached.
void BelongToModal(QWidget& window) {
    window.winId(); // from here on it has a handle
    QWindow* handle = window.windowHandle();
    const QWidget* modal = QApplication::activeModalWidget();
    QWindow* owner = modal ? modal->windowHandle() : nullptr;
    // A box that stands above this very window cannot own it.
    if (owner && handle->isAncestorOf(owner, QWindow::IncludeTransients)) owner = handle->transientParent();
    if (owner == handle || handle->transientParent() == owner) return;
    // Whether it is blocked is settled when a window is shown.
    const bool shownAgain = owner && window.isVisible();
    if (shownAgain) {
        window.move(window.pos()); // where it stood
        window.hide();
    }
    handle->setTransientParent(owner);
    if (shownAgain) window.show();
}

} // namespace

// ---- waiting ----

void WaitInLoop(const std::function<bool()>& condition, QEventLoop::ProcessEventsFlags events) {
    const auto holds = [&] { return !Global.Ending && condition(); };
    if (!holds()) return;
    QEventLoop loop;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                     [&] {
                         if (!holds()) loop.quit();
                     });
    loop.exec(events);
}

bool FormBehaviour::IsOver() const {
    return gone_ || Global.Ending;
}

void FormBehaviour::WaitWhile(const std::function<bool()>& condition) {
    WaitInLoop([&] { return !gone_ && condition(); });
}

void FormBehaviour::PauseFor(double seconds) {
    if (Global.InstantPauses) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return;
    }
    QTimer pause;
    pause.setSingleShot(true);
    pause.start(static_cast<int>(seconds * 1000));
    WaitInLoop([&] { return !gone_ && pause.isActive(); }, QEventLoop::ExcludeUserInputEvents);
}

// ---- handlers ----

void FormBehaviour::Run(const std::function<void()>& handler) {
    ++running_;
    try {
        handler();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    Leave();
}

bool FormBehaviour::Try(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

void FormBehaviour::Trace(std::string_view routine) const {
    const QWidget& window = const_cast<FormBehaviour*>(this)->Window();
    TraceEvent(std::string(window.metaObject()->className()) + ":" + std::string(routine));
}

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

// ---- the life of a form ----

void FormBehaviour::LoadNow() {
    ++running_;
    try {
        QWidget& window = Window();
        window.setObjectName(QString::fromLatin1(window.metaObject()->className()));
        for (auto* box : window.findChildren<QComboBox*>()) {
            AnnounceOnlyChoices(*box);
            new NoWheel(*box);
        }
        for (auto* box : window.findChildren<QAbstractSpinBox*>()) new NoWheel(*box);
        for (auto* list : window.findChildren<QListWidget*>()) new FirstArrow(*list);
        for (QObject* child : window.findChildren<QObject*>()) {
            if (IsOurs(*child)) WireControl(*child);
        }
        FillCaptions(window);
        WireHelp(window);
        Form_Load();
    } catch (...) {
        // The failure is the caller's, who asked for the form; half a form is no form.
        Unload();
        Leave();
        throw;
    }
    Leave();
}

void FormBehaviour::Leave() {
    if (--running_ == 0 && gone_) FormRegistry::Instance().Release(*this);
}

void FormBehaviour::QueueGotFocus() {
    new BehindFirstPaint(Window(), [this] {
        if (!IsOver()) Run([this] { Form_GotFocus(); });
    });
}

void FormBehaviour::Show(ShowMode mode) {
    if (IsOver()) return;
    QWidget& window = Window();
    // An object that has gone must outlive the wait below.
    ++running_;
    window.setWindowModality(mode == ShowMode::Modal ? Qt::ApplicationModal : Qt::NonModal);
    if (mode == ShowMode::Modeless) BelongToModal(window);
    FormRegistry::Instance().Raise(*this);
    QueueGotFocus();
    window.show();
    window.raise();
    window.activateWindow();
    if (mode == ShowMode::Modal) WaitInLoop([this] { return !gone_; });
    Leave();
}

void FormBehaviour::Unload() {
    if (gone_) return;
    ++running_;
    // From here on no event starts a handler, and a second Unload does nothing.
    gone_ = true;
    try {
        Form_Unload();
    } catch (const std::exception& failure) {
        FailUnexpectedly(failure);
    }
    Window().hide();
    FormRegistry::Instance().PassOn(Window().windowHandle());
    FormRegistry::Instance().Forget(*this);
    Leave();
}

void FormBehaviour::PressEscape() {
    for (const char* name : {"cmdCancel", "cmdOK"}) {
        auto* button = Window().findChild<QAbstractButton*>(QString::fromLatin1(name));
        if (!button || button->isHidden()) continue;
        if (button->isEnabled()) button->click();
        return;
    }
}

void Form::closeEvent(QCloseEvent* event) {
    event->ignore();
    auto* cancel = findChild<QAbstractButton*>(QStringLiteral("cmdCancel"));
    // While the way out is shut (an operation runs), so is the window's own cross.
    if (cancel && !cancel->isEnabled()) return;
    Unload();
}

void MainForm::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (QApplication::activeModalWidget()) return;
    Unload();
}

// ---- the registry ----

FormRegistry& FormRegistry::Instance() {
    static FormRegistry registry;
    return registry;
}

FormBehaviour* FormRegistry::Find(const char* className) {
    for (const auto& form : forms_) {
        if (qstrcmp(form->Window().metaObject()->className(), className) == 0) return form.get();
    }
    return nullptr;
}

FormBehaviour& FormRegistry::Adopt(std::unique_ptr<FormBehaviour> form) {
    FormBehaviour& reference = *form;
    forms_.push_back(std::move(form));
    reference.LoadNow();
    return reference;
}

QStringList FormRegistry::Names() const {
    QStringList names;
    for (const auto& form : forms_) names << QString::fromLatin1(form->Window().metaObject()->className());
    names.sort(Qt::CaseInsensitive);
    return names;
}

void FormRegistry::UnloadSecondary() {
    for (const QString& name : Names()) {
        FormBehaviour* form = Find(name.toLatin1().constData());
        if (form && form->IsSecondary()) form->Unload();
    }
}

void FormRegistry::Clear() {
    UnloadSecondary();
    while (!forms_.empty()) forms_.back()->Unload();
    leaving_.clear();
    shown_.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void FormRegistry::Raise(FormBehaviour& form) {
    std::erase(shown_, &form);
    shown_.push_back(&form);
}

void FormRegistry::Forget(FormBehaviour& form) {
    const bool wasTop = Topmost() == &form;
    std::erase(shown_, &form);
    const auto own =
        std::find_if(forms_.begin(), forms_.end(), [&](const auto& f) { return f.get() == &form; });
    if (own != forms_.end()) {
        leaving_.push_back(std::move(*own));
        forms_.erase(own);
    }
    if (wasTop) FocusTopmost();
}

void FormRegistry::PassOn(const QWindow* owner) {
    if (!owner) return;
    for (FormBehaviour* form : shown_) {
        const QWindow* handle = form->Window().windowHandle();
        if (handle && handle->transientParent() == owner) BelongToModal(form->Window());
    }
}

FormBehaviour* FormRegistry::Topmost() const {
    const auto top = std::find_if(shown_.rbegin(), shown_.rend(),
                                  [](const FormBehaviour* form) { return !form->IsBeside(); });
    return top == shown_.rend() ? nullptr : *top;
}

void FormRegistry::FocusTopmost() {
    FormBehaviour* top = Topmost();
    if (!top) return;
    QTimer::singleShot(0, &top->Window(), [this, top] {
        // A form that was opened meanwhile stands above this one, which is called when that has gone.
        if (Topmost() != top || top->IsOver()) return;
        top->Run([top] { top->Form_GotFocus(); });
    });
}

void FormRegistry::Release(FormBehaviour& form) {
    const auto own =
        std::find_if(leaving_.begin(), leaving_.end(), [&](const auto& f) { return f.get() == &form; });
    if (own == leaving_.end()) return;
    // Not here: the caller of the handler that has just returned may still look at the form.
    form.Window().deleteLater();
    own->release();
    leaving_.erase(own);
}

// ---- captions, the end ----

void FillCaptions(QWidget& window) {
    QList<QObject*> all = window.findChildren<QObject*>();
    all.prepend(&window);
    for (QObject* object : all) {
        if (const auto entry = TagOf(*object, "Tag"); entry && !IsInput(*object)) SetCaption(*object, *entry);
        if (const auto entry = TagOf(*object, "TipTag")) {
            const QString tip = QString::fromStdString(CatalogueText(*entry));
            if (auto* widget = qobject_cast<QWidget*>(object)) {
                widget->setToolTip(PlainTip(tip));
                widget->setAccessibleName(tip);
            }
        }
    }
    for (auto* label : window.findChildren<QLabel*>()) {
        // What comes out of a table or a file is shown as it stands there; as markup it could open files.
        if (label->textFormat() == Qt::AutoText) label->setTextFormat(Qt::PlainText);
        // Unlike other controls a list is not read aloud by the label before it.
        auto* list = qobject_cast<QAbstractItemView*>(label->buddy());
        const auto entry = TagOf(*label, "Tag");
        if (list && entry && list->accessibleName().isEmpty())
            list->setAccessibleName(QString::fromStdString(CatalogueText(*entry)));
    }
}

void EndProgram(int exitCode) {
    // The first reason to end is the one that counts.
    if (!Global.Ending) Global.ExitCode = exitCode;
    Global.Ending = true;
    QCoreApplication::exit(Global.ExitCode);
}

void FailUnexpectedly(const std::exception& failure) {
    if (Global.Ending) return;
    // Before the box, so that no timer can start a handler that fails on top of this one.
    Global.Ending = true;
    Global.ExitCode = 1;
    const Text words = Text::Path(std::string_view(failure.what()));
    Tell(Lines(words, Text::Value(Global.Events.Entry(0))), Icon::Stop);
    EndProgram(1);
}
