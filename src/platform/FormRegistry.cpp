#include "core/Globals.h"
#include "platform/Form.h"

#include <QApplication>
#include <QTimer>
#include <QWindow>

#include <algorithm>

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
    if (!Topmost()) return;
    FormBehaviour& top = *Topmost();
    QTimer::singleShot(0, &top.Window(), [this, &top] {
        // A form that was opened meanwhile stands above this one, which is called when that has gone.
        if (Topmost() != &top || top.IsOver()) return;
        top.Run([&top] { top.Form_GotFocus(); });
    });
}

void FormRegistry::Release(FormBehaviour& form) {
    const auto own =
        std::find_if(leaving_.begin(), leaving_.end(), [&](const auto& f) { return f.get() == &form; });
    if (own == leaving_.end()) return;
    // Not here: the caller of the handler that has just returned may still look at the form.
    form.Window().deleteLater();
    static_cast<void>(own->release()); // its window takes it along
    leaving_.erase(own);
}

void FormRegistry::BelongToModal(QWidget& window) {
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
