#include "core/Operator.h"

#include "core/Globals.h"

void Tell(const Text& message, Icon icon) {
    Global.TheOperator->MsgBox(message, icon, Buttons::Ok);
}

bool AskYesNo(const Text& message, Icon icon) {
    return Global.TheOperator->MsgBox(message, icon, Buttons::YesNo) == Answer::Yes;
}
