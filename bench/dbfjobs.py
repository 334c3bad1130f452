"""The jobs of job.cpp with python3-dbf, for bench/compare.

    dbfjobs.py import LIKE FILE OUT | export HEADERS LINES FILE | sort TABLE OUT | scan TABLE
"""

import csv
import os
import sys

import dbf

CUSTOMER = ["code", "name", "contact", "address1", "city", "state", "zip", "phone",
            "payterms", "shipvia", "stcode", "altsrch", "address2"]
LINE_WORTH = "l_totprice"


def opened(path, mode=dbf.READ_ONLY):
    return dbf.Table(path, codepage="cp1252").open(mode)


def flush(path):
    with open(path, "rb+") as file:
        os.fsync(file.fileno())


def import_customers(like, path, out):
    table = opened(like).new(out, codepage="cp1252").open(dbf.READ_WRITE)
    names = ["c_" + name for name in CUSTOMER]
    with open(path, encoding="utf-8", newline="") as file:
        rows = csv.reader(file)
        next(rows)
        for row in rows:
            record = dict(zip(names, row))
            record["c_search"] = row[0]
            table.append(record)
    table.close()
    flush(out)


def number(text):
    try:
        float(text)
    except ValueError:
        return False
    return True


def quoted(value):
    text = format(value, ".15g") if isinstance(value, float) else str(value).rstrip() if value is not None else ""
    return text if number(text) else '"' + text + '"'


def export(headers, lines, out):
    fields = ["H_CUSTCODE", "H_BILLNAME", "H_CUST_PO", "H_SHIPVIA", "H_PAYTERMS", "H_BILLCITY",
              "H_BILLST", "H_BILLZIP"]
    by_code = {}
    for record in opened(headers):
        date = record["h_orddate"]
        left = [record["h_ordcode"], date.strftime("%d.%m.%Y") if date else ""]
        by_code.setdefault(record["h_ordcode"].strip().lower(),
                           (left + [record[name.lower()] for name in fields], record["h_tottotal"]))
    with open(out, "w", encoding="cp1252", newline="") as file:
        titles = (["H_ORDCODE", "H_ORDDATE Format: dd.mm.yyyy"] + fields +
                  ["L_ITEMCODE", "L_ITEMDES1", "L_QTY", "L_PRICE", "L_TOTPRICE", "L_NUMBER",
                   "Literal = WEB", "L_QTY * L_PRICE", "H_TOTTOTAL", "L_KEY"])
        file.write(",".join(quoted(title) for title in titles) + "\r\n")
        for line in opened(lines):
            header = by_code.get(line["l_ordcode"].strip().lower())
            if header is None:
                continue
            quantity, price = line["l_qty"], line["l_price"]
            cells = header[0] + [line["l_itemcode"], line["l_itemdes1"], quantity, price, line[LINE_WORTH],
                                 line["l_number"], "WEB", quantity * price, header[1], line["l_key"]]
            file.write(",".join(quoted(cell) for cell in cells) + "\r\n")
        file.flush()
        os.fsync(file.fileno())


def sort(path, out):
    table = opened(path)
    index = table.create_index(lambda record: record["h_ordcode"].lower())
    result = table.new(out, codepage="cp1252").open(dbf.READ_WRITE)
    for record in index:
        result.append(record)
    result.close()
    flush(out)


def scan(path):
    print(format(sum(record[LINE_WORTH] or 0 for record in opened(path)), ".15g"))


JOBS = {"import": import_customers, "export": export, "sort": sort, "scan": scan}

if __name__ == "__main__":
    JOBS[sys.argv[1]](*sys.argv[2:])
