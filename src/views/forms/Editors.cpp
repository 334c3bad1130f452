#include "views/forms/Editors.h"

#include "core/Globals.h"
#include "sync/forms/frmChgLink.h"
#include "views/TableViews.h"

bool HasEditor() {
    const TableView* view = ChosenView();
    return view && view->Flag == ViewLink;
}

bool OpenEditor() {
    if (!HasEditor()) return false;
    Global.LinkRecordToShow = Global.SelectedRow;
    auto& editor = The<frmChgLink>();
    editor.Show();
    return !editor.IsGone();
}
