"""Runs each job with each tool as a whole process, checks the results against each other and prints
what it took. bench/compare builds the programs and starts this."""

import argparse
import csv
import filecmp
import os
import re
import shlex
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BENCH = ROOT / "bench"
BUILT = ROOT / "build/bench/bench"
RELEASE = ROOT / "build/release"
JOB, SHP, FLOOR = BUILT / "job", BUILT / "shp", BUILT / "floor"
STARTUP = RELEASE / "bin/startup"

OURS, FLOOR_NAME, C = "ours", "floor", "C with libshp"
TOOLS = [OURS, FLOOR_NAME, C, "ogr2ogr", "SQLite", "pgdbf, awk", "python3-dbf"]
RUNS = {OURS: 7, FLOOR_NAME: 7, C: 7, "SQLite": 5, "pgdbf, awk": 5, "ogr2ogr": 3, "python3-dbf": 1}

NOTES = """\
Every time is that of a whole process, on one processor, with the files it reads in memory and all that
it wrote on the disk at its end (a program that does not flush by itself is followed by `sync` on its
file). Left out where a tool cannot do the job: SQLite and pgdbf write no tables. SQLite works on a
database that was loaded before, with an index on the order codes, and sorts into a table of its own;
pgdbf only prints, and awk does the rest. This program and the one in C put the sorted table in the place
of the old one, the others beside it. python3-dbf is left out of the longest import. `floor` reads the
same files and writes as many bytes, in blocks, and does nothing else. The results of all tools are the
same records and values: tables are compared field by field, exports cell by cell, blanks at the end cut,
a number by its value, a blank number as 0 and in ogr2ogr's own form for blanks, headings by their count."""


def say(text=""):
    print(text, file=sys.stderr, flush=True)


class Command:
    """One tool's way to do a job. `words` is a list, or a text for bash; `out` what it makes."""

    def __init__(self, tool, words, out=None, reads=(), prepare=None):
        self.tool, self.words, self.out, self.reads, self.prepare = tool, words, out, reads, prepare
        self.walls, self.processor, self.printed = [], [], ""

    def arguments(self):
        if isinstance(self.words, str):
            return ["bash", "-o", "pipefail", "-c", self.words]
        return [str(word) for word in self.words]

    def run(self, keep=True):
        if self.prepare:
            self.prepare()
        elif self.out:
            Path(self.out).unlink(missing_ok=True)
        for path in self.reads:  # into memory
            with open(path, "rb") as file:
                while file.read(1 << 20):
                    pass
        os.sync()
        with tempfile.TemporaryFile() as printed, tempfile.TemporaryFile() as faults:
            begin = time.perf_counter()
            process = subprocess.Popen(self.arguments(), stdout=printed, stderr=faults)
            _, status, usage = os.wait4(process.pid, 0)
            wall = time.perf_counter() - begin
            process.returncode = os.waitstatus_to_exitcode(status)
            printed.seek(0)
            faults.seek(0)
            self.printed = printed.read().decode("latin-1")
            if process.returncode != 0:
                sys.exit(f"{self.tool}: {self.words}\n{faults.read().decode('latin-1')}")
        if keep:
            self.walls.append(wall)
            self.processor.append(usage.ru_utime + usage.ru_stime)

    def peak(self):
        """The most memory that the process held, in MB."""
        if self.prepare:
            self.prepare()
        with tempfile.NamedTemporaryFile() as told:
            subprocess.run(["/usr/bin/time", "-f", "%M", "-o", told.name] + self.arguments(), check=True,
                           stdout=subprocess.DEVNULL)
            return int(told.read().split()[-1]) / 1024


class Job:
    def __init__(self, name, commands, same, limit=None):
        self.name, self.commands, self.same, self.limit = name, commands, same, limit

    def of(self, tool):
        return next((c for c in self.commands if c.tool == tool), None)

    def run(self, rounds):
        most = max(rounds(c.tool) for c in self.commands)
        for turn in range(most):  # tools take turns, so that a busy moment meets all of them
            for command in self.commands:
                if turn < rounds(command.tool):
                    command.run()
        reference = self.of(OURS)
        for command in self.commands:
            if command.tool in (OURS, FLOOR_NAME):
                continue
            fault = self.same(reference, command)
            if fault:
                sys.exit(f"{self.name}: {command.tool} has another result: {fault}")
        say(f"  {self.name}: {len(self.commands) - 1} programs, ours among them, have the same result")


# ---- what the results hold

def value(text, kind="C"):
    """What a cell or field says. ogr2ogr writes asterisks for a blank number, zeros for a blank date."""
    text = text.strip() if kind in "NF" else text.rstrip()
    if kind in "NF" and not text.strip("*"):
        return 0.0
    if kind == "D":
        return text if text != "00000000" else ""
    try:
        return float(text)
    except ValueError:
        return text


def table_records(path):
    """The fields of each record, by the table's own header."""
    with open(path, "rb") as file:
        header = file.read(32)
        count, _, length = struct.unpack_from("<IHH", header, 4)
        fields = []
        while (block := file.read(32))[0] >= 32:
            fields.append((chr(block[11]), block[16]))
        file.seek(32 + 32 * len(fields) + 1)
        for _ in range(count):
            record = file.read(length).decode("cp1252", "replace")
            at, values = 1, []
            for kind, size in fields:
                piece = record[at:at + size]
                values.append(value(piece, kind) if kind in "NFD" else piece.rstrip())
                at += size
            yield values


def same_bytes_of_records(first, second):
    """True if two tables hold the same bytes from the first record to the last."""
    with open(first, "rb") as a, open(second, "rb") as b:
        heads = [file.read(32) for file in (a, b)]
        (count, _, length), other = (struct.unpack_from("<IHH", head, 4) for head in heads)
        if (count, length) != (other[0], other[2]):
            return False
        for file in (a, b):
            file.seek(32)
            fields = 0
            while file.read(32)[:1] >= b" ":
                fields += 1
            file.seek(33 + 32 * fields)
        left = count * length
        while left > 0:
            size = min(left, 1 << 20)
            if a.read(size) != b.read(size):
                return False
            left -= size
        return True


def first_difference(first, second):
    number = 0
    marker = object()
    first, second = iter(first), iter(second)
    while True:
        number += 1
        a, b = next(first, marker), next(second, marker)
        if a is marker and b is marker:
            return "" if number > 1 else "nothing there"
        if a != b:
            return f"record {number}: {a if a is not marker else 'none'} and {b if b is not marker else 'none'}"


def same_tables(ours, other):
    if same_bytes_of_records(ours.out, other.out):
        return ""
    return first_difference(table_records(ours.out), table_records(other.out))


def same_tables_of_database(ours, other):
    """`other` is SQLite's, which prints the sorted table as text; dates have dashes there."""
    database = other.out
    text = subprocess.run(["sqlite3", "-csv", database, "SELECT * FROM sorted"], check=True,
                          stdout=subprocess.PIPE, encoding="utf-8", errors="replace").stdout
    kinds = []
    with open(ours.out, "rb") as file:
        file.seek(32)
        while (block := file.read(32))[0] >= 32:
            kinds.append(chr(block[11]))

    def records():
        for row in csv.reader(text.splitlines()):
            yield [value(cell, kind) if kind in "NF" else cell.replace("-", "") if kind == "D" else cell
                   for kind, cell in zip(kinds, row[1:])]  # behind SQLite's own number

    return first_difference(table_records(ours.out), records())


def same_texts(ours, other):
    if filecmp.cmp(ours.out, other.out, shallow=False):
        return ""

    def rows(path):
        with open(path, encoding="cp1252", newline="") as file:
            reader = csv.reader(file)
            yield len(next(reader))  # every tool names its columns in its own way
            for row in reader:
                yield [value(cell) for cell in row]

    return first_difference(rows(ours.out), rows(other.out))


def same_sums(ours, other):
    def total(command):
        return float(re.findall(r"-?[0-9.]+(?:e[+-]?[0-9]+)?", command.printed)[-1])
    a, b = total(ours), total(other)
    return "" if abs(a - b) <= 1e-9 * abs(a) else f"{a} and {b}"


# ---- the jobs

CUSTOMER_FIELDS = [("C_SEARCH", 40, "Code"), ("C_CODE", 20, "Code"), ("C_PHONE", 24, "Phone"),
                   ("C_NAME", 40, "Name"), ("C_ZIP", 12, "Zip"), ("C_ADDRESS1", 40, "Address"),
                   ("C_ADDRESS2", 40, "Second"), ("C_CITY", 30, "City"), ("C_STATE", 20, "State"),
                   ("C_CONTACT", 40, "Contact"), ("C_PAYTERMS", 30, "Terms"), ("C_SHIPVIA", 30, "Via"),
                   ("C_STCODE", 10, "Tax"), ("C_ALTSRCH", 40, "Alt")]

EXPORT_COLUMNS = """{date}, h.H_CUSTCODE, h.H_BILLNAME, h.H_CUST_PO, h.H_SHIPVIA, h.H_PAYTERMS,
    h.H_BILLCITY, h.H_BILLST, h.H_BILLZIP, l.L_ITEMCODE, l.L_ITEMDES1, l.L_QTY, l.L_PRICE, l.L_TOTPRICE,
    l.L_NUMBER, 'WEB' AS Literal, l.L_QTY * l.L_PRICE AS Product, h.H_TOTTOTAL, l.L_KEY"""

# Without the table in memory there would be no index, and each line would walk all headers.
OGR_EXPORT = ("WITH h AS MATERIALIZED (SELECT * FROM headers) SELECT h.H_ORDCODE, " + EXPORT_COLUMNS.format(
    date="substr(CAST(h.H_ORDDATE AS TEXT), 9, 2) || '.' || substr(CAST(h.H_ORDDATE AS TEXT), 6, 2) || '.' || "
         "substr(CAST(h.H_ORDDATE AS TEXT), 1, 4)") + " FROM lines l JOIN h ON h.H_ORDCODE = l.L_ORDCODE")
SQLITE_EXPORT = ("SELECT h.H_ORDCODE, " + EXPORT_COLUMNS.format(date="strftime('%d.%m.%Y', h.H_ORDDATE)") +
                 " FROM lines l JOIN headers h ON h.H_ORDCODE = l.L_ORDCODE COLLATE NOCASE")
AWK_SUM = r"""BEGIN { FS = "\t" } /^\\COPY/ { on = 1; next } /^\\\.$/ { on = 0 } on { sum += $11 }
    END { printf "%.15g\n", sum }"""
WRITE_TABLE = ["ogr2ogr", "-f", "ESRI Shapefile", "-lco", "ENCODING=CP1252", "-lco", "SHPT=NULL"]


def bash(*words):
    return " ".join(shlex.quote(str(word)) for word in words)


class Data:
    """An office with orders, one with as many headers, and the text files of customers."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.out = self.folder / "out"
        self.out.mkdir()
        self.orders, self.many = self.folder / "orders", self.folder / "many"
        subprocess.run([JOB, "office", self.orders, "20000", "100000", "10000"], check=True)
        subprocess.run([JOB, "office", self.many, "100000", "0", "0"], check=True)
        self.customers = {}
        for count in (100_000, 1_000_000):
            told = subprocess.run([JOB, "customers", self.orders, str(count)], check=True,
                                  stdout=subprocess.PIPE, text=True)
            self.customers[count] = Path(told.stdout.strip())
        self.like = self.table(self.orders, "ZUKCUST", "DBFEmpty")
        # Under plain names, for tools that go by the name of a file.
        self.tables = self.folder / "tables"
        self.tables.mkdir()
        self.headers = self.copy(self.table(self.orders, "ZUKORHDR"), "headers.dbf")
        self.lines = self.copy(self.table(self.orders, "ZUKORLIN"), "lines.dbf")
        self.unsorted = self.copy(self.table(self.many, "ZUKORHDR"), "unsorted.dbf")
        self.database = self.folder / "orders.db"
        for table in (self.headers, self.lines, self.unsorted):
            subprocess.run(["ogr2ogr", "-f", "SQLite", *(["-update"] if self.database.exists() else []),
                            self.database, table, "-oo", "ENCODING=CP1252", "-lco", "LAUNDER=NO"], check=True)
        self.sqlite("CREATE INDEX codes ON headers (H_ORDCODE COLLATE NOCASE)")

    def sqlite(self, statement):
        subprocess.run(["sqlite3", self.database, statement], check=True)

    @staticmethod
    def table(office, name, folder="DBFFiles"):
        return next(path for path in (office / folder).iterdir() if path.name.lower() == name.lower() + ".dbf")

    def copy(self, table, name):
        return Path(shutil.copyfile(table, self.tables / name))

    def floor(self, size, reads):
        out = self.out / "floor"
        return Command(FLOOR_NAME, [FLOOR, size, out if size else "-", *reads], out if size else None, reads)

    def python(self, job, *paths, reads, out=None):
        return Command("python3-dbf", ["/usr/bin/python3", BENCH / "dbfjobs.py", job, *paths], out, reads)


def import_job(data, count, quick):
    text = data.customers[count]
    table = data.table(data.orders, "ZUKCUST")
    out = data.out / f"customers-{count}"
    select = ", ".join(f"CAST({column} AS character({size})) AS {field}" for field, size, column in CUSTOMER_FIELDS)
    ogr = bash(*WRITE_TABLE, f"{out}-ogr.dbf", text, "-oo", "AUTODETECT_TYPE=NO", "-sql",
               f'SELECT {select} FROM "{text.stem}"') + f" && sync {out}-ogr.dbf"
    commands = [Command(OURS, [JOB, "import", data.orders, text], table, [text],
                        prepare=lambda: shutil.copyfile(data.like, table)),
                Command(C, [SHP, "import", data.like, text, f"{out}-shp.dbf"], f"{out}-shp.dbf", [text]),
                data.floor(417 * count + 482, [text])]
    if count == 100_000 or not quick:
        commands.append(Command("ogr2ogr", ogr, f"{out}-ogr.dbf", [text]))
    if count == 100_000 and not quick:
        commands.append(data.python("import", data.like, text, f"{out}-python.dbf", reads=[text],
                                    out=f"{out}-python.dbf"))
    return Job(f"import of {count:,} customers", commands, same_tables, 6)


def export_job(data, quick):
    reads = [data.headers, data.lines]
    out = data.out / "orders"

    def to(tool):
        return f"{out}-{tool}.csv"
    ogr = (bash("ogr2ogr", "-f", "CSV", "-lco", "STRING_QUOTING=IF_NEEDED", "-lco", "LINEFORMAT=CRLF",
                "/vsistdout/", data.tables, "-oo", "ENCODING=CP1252", "-dialect", "SQLite", "-sql", OGR_EXPORT) +
           f" | iconv -f UTF-8 -t CP1252 > {to('ogr')} && sync {to('ogr')}")
    sqlite = (bash("sqlite3", "-csv", "-header", data.database, SQLITE_EXPORT) +
              f" | iconv -f UTF-8 -t CP1252 > {to('sqlite')} && sync {to('sqlite')}")
    awk = (f"LC_ALL=C awk -f {bash(BENCH / 'export.awk')} <(pgdbf {data.headers}) <(pgdbf {data.lines}) > "
           f"{to('awk')} && sync {to('awk')}")
    commands = [Command(OURS, [JOB, "export", data.orders, to("ours")], to("ours"), reads),
                Command(C, [SHP, "export", data.headers, data.lines, to("shp")], to("shp"), reads),
                Command("ogr2ogr", ogr, to("ogr"), reads),
                Command("SQLite", sqlite, to("sqlite"), [data.database]),
                Command("pgdbf, awk", awk, to("awk"), reads)]
    if not quick:
        commands.append(data.python("export", data.headers, data.lines, to("python"), reads=reads,
                                    out=to("python")))
    commands[0].run(keep=False)
    commands.append(data.floor(os.path.getsize(to("ours")), reads))
    return Job("export of 100,000 order lines", commands, same_texts, 6)


def sort_job(data, quick):
    table = data.table(data.many, "ZUKORHDR")
    out = data.out / "sorted"
    other = f"{out}-shp.dbf"
    reads = [data.unsorted]
    ogr = bash(*WRITE_TABLE, f"{out}-ogr.dbf", data.unsorted, "-oo", "ENCODING=CP1252", "-sql",
               "SELECT * FROM unsorted ORDER BY H_ORDCODE") + f" && sync {out}-ogr.dbf"
    commands = [Command(OURS, [JOB, "sort", data.many], table, [table],
                        prepare=lambda: shutil.copyfile(data.unsorted, table)),
                Command(C, [SHP, "sort", other], other, [other],
                        prepare=lambda: shutil.copyfile(data.unsorted, other)),
                Command("ogr2ogr", ogr, f"{out}-ogr.dbf", reads),
                Command("SQLite", ["sqlite3", data.database,
                                   "CREATE TABLE sorted AS SELECT * FROM unsorted ORDER BY H_ORDCODE COLLATE NOCASE"],
                        data.database, [data.database],
                        prepare=lambda: data.sqlite("DROP TABLE IF EXISTS sorted")),
                data.floor(os.path.getsize(data.unsorted), reads)]
    if not quick:
        commands.append(data.python("sort", data.unsorted, f"{out}-python.dbf", reads=reads,
                                    out=f"{out}-python.dbf"))

    def same(ours, other):
        return (same_tables_of_database if other.tool == "SQLite" else same_tables)(ours, other)

    return Job("sort of 100,000 order headers", commands, same, 12)


def scan_job(data, quick):
    reads = [data.lines]
    commands = [Command(OURS, [JOB, "scan", data.orders], None, [data.table(data.orders, "ZUKORLIN")]),
                Command(C, [SHP, "scan", data.lines], None, reads),
                Command("ogr2ogr", ["ogrinfo", "-ro", "-q", data.lines, "-sql", "SELECT SUM(L_TOTPRICE) FROM lines"],
                        None, reads),
                Command("SQLite", ["sqlite3", data.database, "SELECT SUM(L_TOTPRICE) FROM lines"], None,
                        [data.database]),
                Command("pgdbf, awk", f"pgdbf {data.lines} | LC_ALL=C awk {shlex.quote(AWK_SUM)}", None, reads),
                data.floor(0, reads)]
    if not quick:
        commands.append(data.python("scan", data.lines, reads=reads))
    return Job("scan of 100,000 order lines", commands, same_sums, 6)


# ---- what was found

def duration(seconds):
    return f"{seconds * 1000:.0f} ms" if seconds < 1 else f"{seconds:.2f} s"


def times(ratio):
    return f"{ratio:.1f}" if ratio < 10 else f"{ratio:.0f}"


def median(command):
    return statistics.median(command.walls)


def report(jobs):
    print(f"{'':31}{'median':>9} {'least':>9} {'processor':>10} {'of ours':>8} {'of floor':>9}  runs")
    for job in jobs:
        print(job.name)
        ours, floor = (median(job.of(tool)) for tool in (OURS, FLOOR_NAME))
        for tool in TOOLS:
            command = job.of(tool)
            if command:
                print(f"  {tool:28} {duration(median(command)):>9} {duration(min(command.walls)):>9} "
                      f"{duration(statistics.median(command.processor)):>10} {times(median(command) / ours):>8} "
                      f"{times(median(command) / floor):>9}  {len(command.walls)}")
    print()
    for job in jobs:
        ours, floor, other = (median(job.of(tool)) for tool in (OURS, FLOOR_NAME, C))
        ahead = "ahead of" if ours < other else "BEHIND"
        within = "within" if ours <= job.limit * floor else "BEYOND"
        print(f"{job.name}: {ahead} the C program ({times(other / ours)}); {within} {job.limit} times the floor "
              f"({times(ours / floor)})" +
              (f"; the C program is {times(median(job.of('ogr2ogr')) / other)} times ahead of ogr2ogr"
               if job.of("ogr2ogr") else ""))


def markdown(jobs):
    shown = [tool for tool in TOOLS if tool != OURS]
    lines = ["| | this program | " + " | ".join(shown) + " |", "|---" * (len(shown) + 2) + "|"]
    for job in jobs:
        ours = median(job.of(OURS))
        cells = [f"{times(median(job.of(tool)) / ours)} ×" if job.of(tool) else "" for tool in shown]
        lines.append(f"| {job.name} | {duration(ours)} | " + " | ".join(cells) + " |")
    return "\n".join(lines)


def put_into_readme(table):
    path = ROOT / "README.md"
    text = path.read_text(encoding="utf-8")
    begin, end = "<!-- bench/compare -->\n", "<!-- end of bench/compare -->"
    if begin not in text:
        sys.exit("README.md has no place for the table")
    head, rest = text.split(begin)
    path.write_text(head + begin + table + "\n" + end + rest.split(end)[1], encoding="utf-8")


def our_own_jobs(data, quick):
    """The jobs that nobody else has: what each took, as lines."""
    table = data.table(data.orders, "ZUKTOTALPC")
    saved = data.copy(table, "events.dbf")
    totals = Command(OURS, [JOB, "totals", data.orders], None, [table],
                     prepare=lambda: shutil.copyfile(saved, table))
    count = 2000
    trace = Command(OURS, [JOB, "trace", data.orders, str(count)])
    for _ in range(1 if quick else 7):
        totals.run()
        trace.run()
    lines = [f"totals event on 10,000 events, with the counting of 100,000 order lines: {duration(median(totals))}",
             f"trace: {count / median(trace):,.0f} events a second, each rewriting Events.log"]

    office = data.folder / "start"
    subprocess.run([RELEASE / "layoutoffice", RELEASE / "installed", office], check=True,
                   stdout=subprocess.DEVNULL)
    shutil.copyfile(RELEASE / "bin/ZUKTramble", office / "ZUKTramble")
    (office / "ZUKTramble").chmod(0o755)
    subprocess.run([JOB, "import", office, data.customers[100_000]], check=True)
    told = subprocess.run([STARTUP, office, "1" if quick else "7"], check=True, stdout=subprocess.PIPE, text=True)
    starts = [float(line) / 1000 for line in told.stdout.split()]
    lines.append(f"start to a painted main screen, 100,000 customers in the tables: "
                 f"{duration(statistics.median(starts))}")
    return lines


def growth(data, jobs):
    """What ten times as many records cost, in time and in memory."""
    imports = [job for job in jobs if job.name.startswith("import")]
    small, large = (job.of(OURS) for job in imports)
    floors = [median(job.of(FLOOR_NAME)) for job in imports]
    lines = [f"import: 1,000,000 customers take {times(median(large) / median(small))} times as long as 100,000; "
             f"the floor {times(floors[1] / floors[0])}",
             f"import: at most {small.peak():.1f} MB of memory for 100,000 customers, {large.peak():.1f} MB for 1,000,000"]
    scans = []
    for count in (100_000, 1_000_000):
        office = data.folder / f"lines-{count}"
        subprocess.run([JOB, "office", office, "20000", str(count), "0"], check=True)
        scan = Command(OURS, [JOB, "scan", office], None, [data.table(office, "ZUKORLIN")])
        for _ in range(5):
            scan.run()
        scans.append((median(scan), scan.peak()))
        shutil.rmtree(office)
    lines += [f"scan: 1,000,000 order lines take {times(scans[1][0] / scans[0][0])} times as long as 100,000",
              f"scan: at most {scans[0][1]:.1f} MB of memory for 100,000 order lines, {scans[1][1]:.1f} MB for 1,000,000"]
    return lines


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--readme", action="store_true")
    parser.add_argument("--core", type=int, default=max(os.sched_getaffinity(0)))
    options = parser.parse_args()
    os.sched_setaffinity(0, {options.core})

    def rounds(tool):
        return 1 if options.quick else RUNS[tool]

    with tempfile.TemporaryDirectory(prefix="tramble-compare-") as folder:
        say("Making the data ...")
        data = Data(folder)
        jobs = []
        for make in (lambda: import_job(data, 100_000, options.quick),
                     lambda: import_job(data, 1_000_000, options.quick),
                     lambda: export_job(data, options.quick), lambda: sort_job(data, options.quick),
                     lambda: scan_job(data, options.quick)):
            job = make()
            large = "1,000,000" in job.name
            job.run((lambda tool: min(rounds(tool), 1 if tool == "ogr2ogr" else 3)) if large else rounds)
            jobs.append(job)
        table = markdown(jobs)
        if not options.markdown:
            report(jobs)
            print()
            for line in growth(data, jobs) + our_own_jobs(data, options.quick):
                print(line)
            print("\n" + NOTES + "\n")
        print(table)
        if options.readme:
            put_into_readme(table)


if __name__ == "__main__":
    main()
