#pragma once

class FormBehaviour;
class Report;

/// The way of a report to paper, for the Print buttons of the screens: the common printer dialog, then its
/// pages, behind a window that stops it where there are many. Giving up in either ends it quietly. Tells the
/// operator of everything else that went wrong, and of a report that has something to say when it is printed.
/// False when the operator has been told that the report's content has changed: it is of no more use. The
/// form may be over when it returns.
bool PrintReport(FormBehaviour& form, Report& report);
