#!/bin/sh
# Writes the export that the template DemoOrders.xor asks for, from the order tables
# in a folder, with dbview and awk alone: something to hold the program's export against.
#
#   make.sh TABLES_DIR OUTFILE
#
# The tables are ZUKORHDR.DBF and ZUKORLIN.DBF, in any spelling. Text is passed through
# byte by byte, in the code page of the tables.
set -eu
LC_ALL=C
export LC_ALL

if [ $# -ne 2 ]; then
	echo "usage: $0 TABLES_DIR OUTFILE" >&2
	exit 2
fi
tables=$1
out=$2

Table() {
	found=$(find "$tables/" -maxdepth 1 -type f -iname "$1" | sort | head -n 1)
	if [ -z "$found" ]; then
		echo "$0: no $1 in $tables" >&2
		exit 1
	fi
	printf '%s\n' "$found"
}
headers=$(Table ZUKORHDR.DBF)
lines=$(Table ZUKORLIN.DBF)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Unmarked and deleted records alike (-D puts the mark in front), padding kept, and a
# character between the fields that no table holds.
mark=$(printf '\001')
dbview -e -o -r "$headers" >"$work/header-fields"
dbview -b -D -r -d "$mark" "$headers" >"$work/header-rows"
dbview -e -o -r "$lines" >"$work/line-fields"
dbview -b -D -r -d "$mark" "$lines" >"$work/line-rows"

awk '
function Trim(s) { sub(/^ +/, "", s); sub(/ +$/, "", s); return s }

# Signs, a currency sign and brackets taken off; what is left goes into Bare, and
# Minus says whether the number is below 0.
function Undress(s,    signs) {
	s = Trim(s); Minus = 0; signs = 0
	if (s ~ /^\(.*\)$/) { s = Trim(substr(s, 2, length(s) - 2)); Minus = 1; signs = 1 }
	if (!signs && s ~ /^[-+]/) { Minus = s ~ /^-/; s = Trim(substr(s, 2)); signs = 1 }
	if (s ~ /^\$/) s = Trim(substr(s, 2))
	if (!signs && s ~ /^[-+]/) { Minus = s ~ /^-/; s = Trim(substr(s, 2)); signs = 1 }
	if (!signs && s ~ /[-+]$/) { Minus = s ~ /-$/; s = Trim(substr(s, 1, length(s) - 1)) }
	Bare = s
}
function IsNumeric(s) {
	Undress(s)
	return Bare ~ /^([0-9](,?[0-9])*(\.[0-9]*)?|\.[0-9]+)([EeDd][-+]?[0-9]+)?$/
}
function Number(s) {
	Undress(s)
	gsub(/,/, "", Bare); gsub(/[Dd]/, "E", Bare)
	return Minus ? -Bare : Bare + 0
}

# Up to 15 digits, no trailing zeros, no exponent below 1E+15.
function Plain(x,    s, sign, parts, digits, zeros) {
	if (x == 0) return "0"
	s = sprintf("%.15g", x)
	if (s !~ /e/) return s
	if (s ~ /e\+/) return toupper(s)
	sign = s ~ /^-/ ? "-" : ""
	split(s, parts, "e-")
	digits = parts[1]; gsub(/[-.]/, "", digits)
	for (zeros = parts[2] - 1; zeros > 0; --zeros) digits = "0" digits
	return sign "0." digits
}
function Product(left, right) {
	if (IsNumeric(left) && IsNumeric(right)) return Plain(Number(left) * Number(right))
	return left " * " right
}

# A date that cannot be read leaves the cell as it stood for the line before.
function Date(value, form, before,    y, m, d) {
	if (value == "") return ""
	y = substr(value, 1, 4); m = substr(value, 5, 2); d = substr(value, 7, 2)
	if (value !~ /^[0-9]+$/ || length(value) != 8 || m < "01" || m > "12" || d < "01" || d > "31") return before
	return form == "dmy" ? d "." m "." y : y "-" m "-" d
}

function Quoted(s) {
	s = Trim(s)
	return s ~ /^"/ && s ~ /"$/ ? s : "\"" s "\""
}
function WriteLine(n,    i, text) {
	text = ""
	for (i = 1; i <= n; ++i) text = text (i > 1 ? "," : "") (IsNumeric(Cells[i]) ? Cells[i] : Quoted(Cells[i]))
	printf "%s\r\n", text
}

function H(name) { return Trim(Header[match_, HeaderAt[name]]) }
function L(name) { return Trim($(LineAt[name] + 1)) }

BEGIN {
	n = split("H_ORDCODE|H_ORDDATE Format: dd.mm.yyyy|H_CUSTCODE|H_BILLNAME|H_CUST_PO|" \
	          "Literal = WEB|L_NUMBER|L_ITEMCODE|L_ITEMDES1|L_QTY|L_QTY_UM|L_PRICE|" \
	          "L_QTY * L_PRICE|L_TOTPRICE|H_TOTTOTAL|H_SHIPVIA|H_SHIPDATE Format: yyyy-mm-dd", Columns, "|")
	for (i = 1; i <= n; ++i) printf "%s\"%s\"", (i > 1 ? "," : ""), Columns[i]
	printf "\r\n"
}

kind == "header-fields" { if (FNR > 1) HeaderAt[Trim($1)] = FNR - 1; next }
kind == "line-fields"   { if (FNR > 1) LineAt[Trim($1)] = FNR - 1; next }
kind == "header-rows" {
	for (i = 1; i < NF; ++i) Header[FNR, i] = $(i + 1)
	code = toupper(Trim($(HeaderAt["H_ORDCODE"] + 1)))
	if (!(code in First)) First[code] = FNR
	next
}
kind == "line-rows" {
	code = toupper(L("L_ORDCODE"))
	if (!(code in First)) next
	match_ = First[code]
	Cells[1] = H("H_ORDCODE")
	Cells[2] = Date(H("H_ORDDATE"), "dmy", Cells[2])
	Cells[3] = H("H_CUSTCODE")
	Cells[4] = H("H_BILLNAME")
	Cells[5] = H("H_CUST_PO")
	Cells[6] = "WEB"
	Cells[7] = L("L_NUMBER")
	Cells[8] = L("L_ITEMCODE")
	Cells[9] = L("L_ITEMDES1")
	Cells[10] = L("L_QTY")
	Cells[11] = L("L_QTY_UM")
	Cells[12] = L("L_PRICE")
	Cells[13] = Product(L("L_QTY"), L("L_PRICE"))
	Cells[14] = L("L_TOTPRICE")
	Cells[15] = H("H_TOTTOTAL")
	Cells[16] = H("H_SHIPVIA")
	Cells[17] = Date(H("H_SHIPDATE"), "ymd", Cells[17])
	WriteLine(n)
}
' FS='	' kind=header-fields "$work/header-fields" FS='\001' kind=header-rows "$work/header-rows" \
	FS='	' kind=line-fields "$work/line-fields" FS='\001' kind=line-rows "$work/line-rows" >"$work/export"
cp "$work/export" "$out"
