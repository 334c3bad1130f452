#include "store/forms/frmAppend.h"

frmAppend::frmAppend()
    : AppendForm(
          {{&UploadRun::OrderHeaders, MergedOrderHeaders}, {&UploadRun::OrderLines, MergedOrderLines}}) {
    setupUi(this);
    Bind();
}
