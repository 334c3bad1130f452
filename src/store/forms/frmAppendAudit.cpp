#include "store/forms/frmAppendAudit.h"

frmAppendAudit::frmAppendAudit()
    : AppendForm({{&UploadRun::AuditHeaders, MergedAuditHeaders},
                  {&UploadRun::AuditLines, MergedAuditLines},
                  {&UploadRun::HHTotals, MergedHHTotals}}) {
    setupUi(this);
    Bind();
}
