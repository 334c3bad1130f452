#include "views/forms/Editors.h"

#include "core/Globals.h"
#include "sync/forms/frmChgLink.h"
#include "views/TableViews.h"
#include "views/forms/frmChSetup.h"
#include "views/forms/frmCompany.h"
#include "views/forms/frmEditCust.h"
#include "views/forms/frmEditItem.h"
#include "views/forms/frmEditSTax.h"
#include "views/forms/frmPay.h"
#include "views/forms/frmPrinter.h"

#include <algorithm>
#include <iterator>

namespace {

template <class F>
bool OpenForm() {
    auto& editor = The<F>();
    editor.Show();
    return !editor.IsGone();
}

bool OpenLinks() {
    Global.LinkRecordToShow = Global.SelectedRow;
    return OpenForm<frmChgLink>();
}

/// One that is open saves first, and stays where it is when it cannot.
template <class F>
bool OpenAtRecord() {
    if (auto* open = IfLoaded<F>()) open->GoTo(Global.SelectedRow);
    return OpenForm<F>();
}

struct Editor {
    ViewFlag Flag;
    bool (*Open)();
};

constexpr Editor AllEditors[] = {
    {ViewCust, OpenAtRecord<frmEditCust>},
    {ViewItem, OpenAtRecord<frmEditItem>},
    {ViewSTax, OpenAtRecord<frmEditSTax>},
    {ViewCompany, OpenForm<frmCompany>},
    {ViewLink, OpenLinks},
    {ViewPay, OpenAtRecord<frmPay>},
    {ViewPrinter, OpenForm<frmPrinter>},
    {ViewSetup, OpenForm<frmChSetup>},
};

const Editor* ChosenEditor() {
    if (!Global.ViewFolder.empty()) return nullptr;
    const TableView* view = ChosenView();
    const auto chosen = std::find_if(std::begin(AllEditors), std::end(AllEditors),
                                     [&](const Editor& editor) { return view && editor.Flag == view->Flag; });
    return chosen == std::end(AllEditors) ? nullptr : chosen;
}

} // namespace

bool HasEditor() {
    return ChosenEditor() != nullptr;
}

bool OpenEditor() {
    const Editor* editor = ChosenEditor();
    return editor && editor->Open();
}
