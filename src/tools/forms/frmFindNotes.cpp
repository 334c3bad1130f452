#include "tools/forms/frmFindNotes.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Look.h"
#include "tools/Notes.h"
#include "tools/forms/frmNotes.h"

void frmFindNotes::Form_Load() {
    TraceEvent("frmFindNotes:Form_Load");
    setWindowIcon(Picture("tool-notes"));
    FG1->SetEmptyText(msg::EmptyNotes);
    ReadList();
}

void frmFindNotes::ReadList() {
    NotesFile file;
    try {
        file = ReadNotes();
        cmdNew->setEnabled(true);
    } catch (const RunTimeFailure& failure) {
        // Nobody knows what number a new one would have.
        cmdNew->setEnabled(false);
        Tell(Lines(msg::NotesUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    lastNote_ = static_cast<std::int32_t>(file.Notes.size());
    const int column = FG1->SortColumn();
    const bool descending = FG1->IsDescending();
    FG1->SetContent(NotesGrid(file.Notes), QStringLiteral("frmFindNotes"));
    if (column >= 0) FG1->SortOn(column, descending);
    const std::string path = Global.DBFPath + "Notes.dat";
    if (file.CutOff) Tell(Lines(msg::NotesCutOff, Text::Path(std::string_view(path))), Icon::Warning);
}

void frmFindNotes::OpenNote(std::int32_t number, bool isNew) {
    Global.CurrentNote = number;
    Global.NewNote = isNew;
    The<frmNotes>().Show(ShowMode::Modal);
    Global.NewNote = false;
    if (IsOver()) return;
    ReadList();
    FG1->SelectRecord(number);
    FG1->setFocus();
}

void frmFindNotes::FG1_DblClick() {
    TraceEvent("frmFindNotes:FG1_DblClick");
    if (const std::int32_t number = FG1->SelectedRecord()) OpenNote(number, false);
}

void frmFindNotes::FG1_ColumnClick(int column) {
    TraceEvent("frmFindNotes:FG1_ColumnClick");
    FG1->SortOn(column);
}

void frmFindNotes::cmdNew_Click() {
    TraceEvent("frmFindNotes:cmdNew_Click");
    OpenNote(lastNote_ + 1, true);
}

void frmFindNotes::cmdCancel_Click() {
    TraceEvent("frmFindNotes:cmdCancel_Click");
    Unload();
}
