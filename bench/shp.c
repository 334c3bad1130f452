/* The jobs of job.cpp as somebody would write them in C with libshp, for the comparison.
 *
 *   shp import LIKE FILE OUT        customers from a text file into a new table with the fields of LIKE
 *   shp export HEADERS LINES FILE   order lines with their headers, in 20 columns
 *   shp sort   TABLE                order headers by their codes; the new table replaces the old one
 *   shp scan   TABLE                prints the sum of L_TOTPRICE
 *
 * Text files and tables are as the engine has them: UTF-8 comes in, tables and exports are in code
 * page 1252, and what was written is on the disk at the end.
 */
#include <ctype.h>
#include <fcntl.h>
#include <shapefil.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

enum { BufferSize = 256 * 1024, LongestLine = 64 * 1024, Columns = 14 };

static void Stop(const char* what) {
    perror(what);
    exit(1);
}

static void* Need(void* memory) {
    if (memory == NULL) Stop("memory");
    return memory;
}

static void FlushToDisk(const char* path) {
    const int file = open(path, O_RDWR);
    if (file < 0 || fsync(file) != 0) Stop(path);
    close(file);
}

static DBFHandle OpenTable(const char* path) {
    const DBFHandle table = DBFOpen(path, "rb");
    if (table == NULL) Stop(path);
    return table;
}

static DBFHandle NewTable(const DBFHandle like, const char* path) {
    const DBFHandle table = DBFCloneEmpty(like, path);
    if (table == NULL) Stop(path);
    return table;
}

static int FieldOf(const DBFHandle table, const char* name) {
    const int field = DBFGetFieldIndex(table, name);
    if (field < 0) Stop(name);
    return field;
}

/* ---- import */

/* What code page 1252 holds at 0x80 to 0x9F. */
static const unsigned short upper[32] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                         0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                         0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

static char PageCharacter(unsigned code) {
    if (code < 0x80 || (code >= 0xA0 && code < 0x100)) return (char)code;
    for (unsigned k = 0; k < 32; ++k) {
        if (upper[k] == code) return (char)(0x80 + k);
    }
    return '?';
}

/* Converts a line of UTF-8 in place. */
static void ToCodePage(char* line) {
    const unsigned char* from = (const unsigned char*)line;
    char* to = line;
    while (*from != 0 && *from < 0x80) ++from;
    to += from - (const unsigned char*)line;
    while (*from != 0) {
        unsigned code = *from++;
        if (code >= 0xC0) {
            int more = code >= 0xF0 ? 3 : code >= 0xE0 ? 2 : 1;
            code &= 0x3Fu >> more;
            for (; more > 0 && (*from & 0xC0) == 0x80; --more) code = code << 6 | (*from++ & 0x3F);
        }
        *to++ = PageCharacter(code);
    }
    *to = 0;
}

/* Splits a line at its commas, quotes taken off; the cells lie in the line itself. */
static int Split(char* line, char* cells[Columns]) {
    int count = 0;
    while (count < Columns) {
        char* end = NULL;
        if (*line == '"' && (end = strchr(line + 1, '"')) != NULL) {
            cells[count++] = line + 1;
            *end++ = 0;
            line = end;
            end = strchr(line, ',');
        } else {
            cells[count++] = line;
            end = strchr(line, ',');
        }
        if (end == NULL) break;
        *end = 0;
        line = end + 1;
    }
    return count;
}

static void Import(const char* like, const char* path, const char* out) {
    /* The field that each column feeds; the first column feeds a second one too. */
    static const char* const names[Columns] = {
        "C_CODE",  "C_NAME",     "C_CONTACT", "C_ADDRESS1", "C_CITY",    "C_STATE",    "C_ZIP",
        "C_PHONE", "C_PAYTERMS", "C_SHIPVIA", "C_STCODE",   "C_ALTSRCH", "C_ADDRESS2", NULL};
    const DBFHandle pattern = OpenTable(like);
    const DBFHandle table = NewTable(pattern, out);
    DBFClose(pattern);
    int fields[Columns];
    for (int k = 0; k < Columns; ++k) fields[k] = names[k] != NULL ? FieldOf(table, names[k]) : -1;
    const int search = FieldOf(table, "C_SEARCH");

    FILE* file = fopen(path, "rb");
    if (file == NULL) Stop(path);
    setvbuf(file, NULL, _IOFBF, BufferSize);
    char* line = Need(malloc(LongestLine));
    char* cells[Columns];
    int record = 0;
    if (fgets(line, LongestLine, file) == NULL) Stop(path); /* the headings */
    while (fgets(line, LongestLine, file) != NULL) {
        line[strcspn(line, "\r\n")] = 0;
        if (*line == 0) continue;
        ToCodePage(line);
        const int count = Split(line, cells);
        DBFWriteStringAttribute(table, record, search, cells[0]);
        for (int k = 0; k < count; ++k) {
            if (fields[k] >= 0) DBFWriteStringAttribute(table, record, fields[k], cells[k]);
        }
        ++record;
    }
    fclose(file);
    free(line);
    DBFClose(table);
    FlushToDisk(out);
}

/* ---- export */

enum { FromHeader, FromLine, Date, Literal, Product };

static const struct {
    const char* Heading;
    int Kind;
    const char* Field;
    const char* Second;
} outputs[] = {{"H_ORDCODE", FromHeader, "H_ORDCODE", NULL},
               {"H_ORDDATE Format: dd.mm.yyyy", Date, "H_ORDDATE", NULL},
               {"H_CUSTCODE", FromHeader, "H_CUSTCODE", NULL},
               {"H_BILLNAME", FromHeader, "H_BILLNAME", NULL},
               {"H_CUST_PO", FromHeader, "H_CUST_PO", NULL},
               {"H_SHIPVIA", FromHeader, "H_SHIPVIA", NULL},
               {"H_PAYTERMS", FromHeader, "H_PAYTERMS", NULL},
               {"H_BILLCITY", FromHeader, "H_BILLCITY", NULL},
               {"H_BILLST", FromHeader, "H_BILLST", NULL},
               {"H_BILLZIP", FromHeader, "H_BILLZIP", NULL},
               {"L_ITEMCODE", FromLine, "L_ITEMCODE", NULL},
               {"L_ITEMDES1", FromLine, "L_ITEMDES1", NULL},
               {"L_QTY", FromLine, "L_QTY", NULL},
               {"L_PRICE", FromLine, "L_PRICE", NULL},
               {"L_TOTPRICE", FromLine, "L_TOTPRICE", NULL},
               {"L_NUMBER", FromLine, "L_NUMBER", NULL},
               {"Literal = WEB", Literal, "WEB", NULL},
               {"L_QTY * L_PRICE", Product, "L_QTY", "L_PRICE"},
               {"H_TOTTOTAL", FromHeader, "H_TOTTOTAL", NULL},
               {"L_KEY", FromLine, "L_KEY", NULL}};
enum { Outputs = sizeof outputs / sizeof *outputs };

/* The cells of the headers that are exported, and a table of their codes. */
struct Headers {
    char** Cells; /* Outputs for each header, NULL where a column is none of its own */
    int* Slots;   /* a header's number from 1, by the hash of its code */
    unsigned Mask;
};

static unsigned Hash(const char* code) {
    unsigned hash = 2166136261u;
    for (; *code != 0; ++code) hash = (hash ^ (unsigned)tolower((unsigned char)*code)) * 16777619u;
    return hash;
}

static int* SlotOf(const struct Headers* headers, const char* code) {
    unsigned at = Hash(code) & headers->Mask;
    while (headers->Slots[at] != 0 &&
           strcasecmp(headers->Cells[(size_t)(headers->Slots[at] - 1) * Outputs], code) != 0)
        at = (at + 1) & headers->Mask;
    return &headers->Slots[at];
}

static struct Headers LoadHeaders(const char* path) {
    struct Headers headers;
    const DBFHandle table = OpenTable(path);
    const int count = DBFGetRecordCount(table);
    headers.Mask = 1023;
    while (headers.Mask < 2u * (unsigned)count) headers.Mask = 2 * headers.Mask + 1;
    headers.Slots = Need(calloc((size_t)headers.Mask + 1, sizeof *headers.Slots));
    headers.Cells = Need(calloc((size_t)count * Outputs + 1, sizeof *headers.Cells));
    int fields[Outputs];
    for (int k = 0; k < Outputs; ++k) {
        const int own = outputs[k].Kind == FromHeader || outputs[k].Kind == Date;
        fields[k] = own ? FieldOf(table, outputs[k].Field) : -1;
    }
    for (int record = 0; record < count; ++record) {
        char** cells = headers.Cells + (size_t)record * Outputs;
        for (int k = 0; k < Outputs; ++k) {
            if (fields[k] >= 0) cells[k] = Need(strdup(DBFReadStringAttribute(table, record, fields[k])));
        }
        int* slot = SlotOf(&headers, cells[0]);
        if (*slot == 0) *slot = record + 1;
    }
    DBFClose(table);
    return headers;
}

static int IsNumber(const char* text) {
    char* end = NULL;
    if (*text == 0) return 0;
    strtod(text, &end);
    return *end == 0;
}

static void WriteCell(FILE* file, const char* text, int first) {
    if (!first) putc_unlocked(',', file);
    if (IsNumber(text)) {
        fputs_unlocked(text, file);
    } else {
        putc_unlocked('"', file);
        fputs_unlocked(text, file);
        putc_unlocked('"', file);
    }
}

static void Export(const char* headerPath, const char* linePath, const char* out) {
    const struct Headers headers = LoadHeaders(headerPath);
    const DBFHandle lines = OpenTable(linePath);
    const int count = DBFGetRecordCount(lines);
    const int code = FieldOf(lines, "L_ORDCODE");
    int fields[Outputs];
    int seconds[Outputs];
    for (int k = 0; k < Outputs; ++k) {
        const int own = outputs[k].Kind == FromLine || outputs[k].Kind == Product;
        fields[k] = own ? FieldOf(lines, outputs[k].Field) : -1;
        seconds[k] = outputs[k].Second != NULL ? FieldOf(lines, outputs[k].Second) : -1;
    }

    FILE* file = fopen(out, "wb");
    if (file == NULL) Stop(out);
    setvbuf(file, NULL, _IOFBF, BufferSize);
    for (int k = 0; k < Outputs; ++k) fprintf(file, k > 0 ? ",\"%s\"" : "\"%s\"", outputs[k].Heading);
    fputs("\r\n", file);
    for (int record = 0; record < count; ++record) {
        const int header = *SlotOf(&headers, DBFReadStringAttribute(lines, record, code));
        if (header == 0) continue;
        char** cells = headers.Cells + (size_t)(header - 1) * Outputs;
        for (int k = 0; k < Outputs; ++k) {
            char text[40];
            switch (outputs[k].Kind) {
            case FromHeader:
                WriteCell(file, cells[k], k == 0);
                break;
            case FromLine:
                WriteCell(file, DBFReadStringAttribute(lines, record, fields[k]), k == 0);
                break;
            case Date:
                if (strlen(cells[k]) == 8)
                    sprintf(text, "%.2s.%.2s.%.4s", cells[k] + 6, cells[k] + 4, cells[k]);
                else
                    *text = 0;
                WriteCell(file, text, k == 0);
                break;
            case Literal:
                WriteCell(file, outputs[k].Field, k == 0);
                break;
            default:
                sprintf(text, "%.15g",
                        DBFReadDoubleAttribute(lines, record, fields[k]) *
                            DBFReadDoubleAttribute(lines, record, seconds[k]));
                WriteCell(file, text, k == 0);
            }
        }
        fputs_unlocked("\r\n", file);
    }
    DBFClose(lines);
    if (fflush(file) != 0 || fsync(fileno(file)) != 0 || fclose(file) != 0) Stop(out);
}

/* ---- sort */

struct Row {
    char* Code;
    int Record;
};

static int CompareRows(const void* a, const void* b) {
    const struct Row* first = a;
    const struct Row* second = b;
    const int order = strcasecmp(first->Code, second->Code);
    return order != 0 ? order : (first->Record > second->Record) - (first->Record < second->Record);
}

static void Sort(const char* path) {
    char out[4096]; /* beside the table, which stands until the new one is on the disk */
    snprintf(out, sizeof out, "%s.new.dbf", path);
    const DBFHandle from = OpenTable(path);
    const DBFHandle to = NewTable(from, out);
    const int count = DBFGetRecordCount(from);
    const int code = FieldOf(from, "H_ORDCODE");
    const size_t size = (size_t)from->nRecordLength;
    struct Row* rows = Need(malloc(((size_t)count + 1) * sizeof *rows));
    char* tuples = Need(malloc((size_t)count * size + 1));
    for (int record = 0; record < count; ++record) {
        rows[record].Code = Need(strdup(DBFReadStringAttribute(from, record, code)));
        rows[record].Record = record;
        memcpy(tuples + (size_t)record * size, DBFReadTuple(from, record), size);
    }
    qsort(rows, (size_t)count, sizeof *rows, CompareRows);
    for (int record = 0; record < count; ++record)
        DBFWriteTuple(to, record, tuples + (size_t)rows[record].Record * size);
    DBFClose(from);
    DBFClose(to);
    FlushToDisk(out);
    if (rename(out, path) != 0) Stop(path);
}

/* ---- scan */

static void Scan(const char* path) {
    const DBFHandle table = OpenTable(path);
    const int count = DBFGetRecordCount(table);
    const int price = FieldOf(table, "L_TOTPRICE");
    double sum = 0;
    for (int record = 0; record < count; ++record) sum += DBFReadDoubleAttribute(table, record, price);
    printf("%.15g\n", sum);
    DBFClose(table);
}

int main(int argc, char** argv) {
    const char* job = argc > 1 ? argv[1] : "";
    if (strcmp(job, "import") == 0 && argc == 5)
        Import(argv[2], argv[3], argv[4]);
    else if (strcmp(job, "export") == 0 && argc == 5)
        Export(argv[2], argv[3], argv[4]);
    else if (strcmp(job, "sort") == 0 && argc == 3)
        Sort(argv[2]);
    else if (strcmp(job, "scan") == 0 && argc == 3)
        Scan(argv[2]);
    else
        return 2;
    return 0;
}
