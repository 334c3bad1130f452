#include "installation/InstallFiles.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "store/TableScan.h"

namespace {

void Append(std::vector<std::string>& files, const std::vector<std::string>& more) {
    files.insert(files.end(), more.begin(), more.end());
}

} // namespace

std::vector<std::string> ProgramSet() {
    return {"Tramble.prc",
            "SF41RDK.prc",
            "ZUK2_PocketUtils.prc",
            "ZUK2_SerialPort.prc",
            "ZUK2_SFRecordUtils.prc",
            "ZUK2_Symbol_Control.prc",
            "ZUK2_DP4SF.prc",
            "TZUK20000#TRAMBLE.prc",
            "TZUK20000$TRAMBLE.pdb"};
}

std::vector<std::string> DemoSet() {
    std::vector<std::string> files;
    for (const char* table :
         {"ZUKAUDTH", "ZUKAUDTL", "ZUKBARIN", "ZUKCOMP",  "ZUKCUST",  "ZUKHELP",  "ZUKITEM", "ZUKORHDR",
          "ZUKORLIN", "ZUKPRINT", "ZUKSETUP", "ZUKTCUST", "ZUKTITEM", "ZUKAUDHH", "ZUKSTAX", "ZUKTORLI",
          "ZUKTORHD", "ZUKAUDBH", "ZUKAUDBL", "ZUKPAY",   "ZUKXPDAT", "ZUKLINK"})
        files.push_back(std::string("TZUK20000_") + table + ".pdb");
    return files;
}

std::vector<std::string> RuntimeSet() {
    return {"ZUK2_PAG-BPM.prc",     "PageMgr.prc",          "TZUK20000_ZUKTPMNT.pdb",
            "ZUK2_SFInkview.prc",   "BPMConfig.prc",        "IrMgr.prc",
            "BPMGeneric.prc",       "BPMEpson.prc",         "BPMDeskJet.prc",
            "BPMLaserJet.prc",      "BSSFontDB.pdb",        "ZUK2_PrtComm.prc",
            "TZUK20000_ZUKPRN.pdb", "TZUK20000_ZUKVER.pdb", "TZUK20000_ZUKTEMP.pdb",
            "ZUK2_Screenlock.prc"};
}

std::vector<std::string> FilesOf(InstallKind kind) {
    std::vector<std::string> files = ProgramSet();
    if (kind == InstallKind::Demo) Append(files, DemoSet());
    Append(files, RuntimeSet());
    return files;
}

std::vector<std::string> LiveTables() {
    std::vector<std::string> tables;
    for (const char* name :
         {"ZUKAUDBH.DBF", "ZUKAUDBL.DBF", "ZUKAudTH.dbf", "ZUKAUDTL.DBF", "ZUKAUDHH.DBF", "ZUKBarin.dbf",
          "ZUKCOMP.DBF",  "ZUKCust.dbf",  "ZUKHELP.DBF",  "ZUKItem.dbf",  "ZUKLINK.DBF",  "ZUKORHDR.DBF",
          "ZUKORLIN.DBF", "ZUKPAY.DBF",   "ZUKPRINT.DBF", "ZUKSETUP.DBF", "ZUKStax.dbf",  "ZUKTCUST.DBF",
          "ZUKTITEM.DBF", "ZUKTORHD.DBF", "ZUKTORLI.DBF", "ZUKTPMNT.DBF", "ZUKXPDAT.DBF"})
        tables.push_back(Global.DBFPath + name);
    return tables;
}

void OpenLiveTables() {
    for (const std::string& path : LiveTables()) TableScan{path};
}

MessageId InstallType(InstallKind kind) {
    switch (kind) {
    case InstallKind::Demo:
        return msg::TypeDemo;
    case InstallKind::Live:
        return msg::TypeLive;
    case InstallKind::Program:
        break;
    }
    return msg::cmdProgram;
}
