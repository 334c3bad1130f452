#include "Jobs.h"

#include "core/Globals.h"
#include "core/Numbers.h"
#include "store/TableScan.h"

ImportJob CustomerImport(const std::string& file) {
    ImportJob job;
    job.ImportFile = file;
    job.TableFile = Global.DBFPath + "ZUKCUST.DBF";
    job.Delimiter = Delimiter::CsvQuotes;
    job.StartLine = 2;
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    job.SelectedFields = {"C_CODE; C_SEARCH", "C_NAME",    "C_CONTACT",  "C_ADDRESS1", "C_CITY",
                          "C_STATE",          "C_ZIP",     "C_PHONE",    "C_PAYTERMS", "C_SHIPVIA",
                          "C_STCODE",         "C_ALTSRCH", "C_ADDRESS2", "Ignore"};
    job.LineCount = CountLines(job.ImportFile);
    return job;
}

ExportJob OrderExport(const std::string& file) {
    ExportJob job;
    job.ExportFile = file;
    job.Delimiter = Delimiter::CsvQuotes;
    job.AddHeadings = true;
    job.Columns = {"H_ORDCODE",     "H_ORDDATE Format: dd.mm.yyyy",
                   "H_CUSTCODE",    "H_BILLNAME",
                   "H_CUST_PO",     "H_SHIPVIA",
                   "H_PAYTERMS",    "H_BILLCITY",
                   "H_BILLST",      "H_BILLZIP",
                   "L_ITEMCODE",    "L_ITEMDES1",
                   "L_QTY",         "L_PRICE",
                   "L_TOTPRICE",    "L_NUMBER",
                   "Literal = WEB", "L_QTY * L_PRICE",
                   "H_TOTTOTAL",    "L_KEY"};
    return job;
}

std::string HeaderTable() {
    return Global.DBFPath + "ZUKORHDR.DBF";
}

std::string LineTable() {
    return Global.DBFPath + "ZUKORLIN.DBF";
}

double SumOfLines(std::string_view table) {
    TableScan scan(table);
    const int price = scan.Layout().Find("L_TOTPRICE");
    double sum = 0;
    while (scan.Next()) sum += ToNumber(scan.Trimmed(price));
    return sum;
}
