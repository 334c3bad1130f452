#pragma once

#include "quality/Problems.h"

/// The checks of the saved templates, each in the folder of its kind. Each adds a row for every
/// test that has found templates which would do nothing or point at something that is gone. A file
/// that cannot be read counts as far as it could be. Nothing is written.

void QCDownload(ProblemList& problems);
void QCUpload(ProblemList& problems);
void QCImport(ProblemList& problems);
void QCExport(ProblemList& problems);
void QCQB(ProblemList& problems);
void QCUA(ProblemList& problems);
