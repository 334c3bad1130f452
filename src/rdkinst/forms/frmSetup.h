#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "ui_frmSetup.h"

#include <functional>

class TitledWindow;

/// The window of the registration, "Setup": it says what is done, and other programs find it by its title.
class frmSetup final : public Form, private Ui::frmSetup {
    Q_OBJECT

public:
    frmSetup() { setupUi(this); }

    /// Shows itself with the text, does the work once that has been painted, and goes. One that is watched
    /// for stands until a program has found it, and three seconds at most: it would be missed otherwise.
    /// What the work throws is thrown on when the window has gone.
    void StandFor(const Text& text, bool isWatched, const std::function<void()>& work);

protected:
    void Form_Load() override;
    void Form_GotFocus() override { painted_ = true; }
    void reject() override {} // the work is not to be given up

private:
    TitledWindow* announced_ = nullptr; ///< belongs to the window
    bool painted_ = false;
};
