#include "platform/MainScreen.h"

MainScreen* IfMainScreen() {
    return dynamic_cast<MainScreen*>(FormRegistry::Instance().Find("frmMain1"));
}
