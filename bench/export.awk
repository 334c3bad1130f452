# The export of job.cpp out of what pgdbf writes for PostgreSQL, for bench/compare:
#
#   awk -f export.awk <(pgdbf HEADERS) <(pgdbf LINES)

BEGIN {
    FS = "\t"
    ORS = "\r\n"
    print "\"H_ORDCODE\",\"H_ORDDATE Format: dd.mm.yyyy\",\"H_CUSTCODE\",\"H_BILLNAME\",\"H_CUST_PO\"," \
        "\"H_SHIPVIA\",\"H_PAYTERMS\",\"H_BILLCITY\",\"H_BILLST\",\"H_BILLZIP\",\"L_ITEMCODE\"," \
        "\"L_ITEMDES1\",\"L_QTY\",\"L_PRICE\",\"L_TOTPRICE\",\"L_NUMBER\",\"Literal = WEB\"," \
        "\"L_QTY * L_PRICE\",\"H_TOTTOTAL\",\"L_KEY\""
}

# A number stays bare; pgdbf leaves the blanks behind it, and writes \N for an empty one.
function cell(text) {
    sub(/ +$/, "", text)
    if (text == "\\N") text = ""
    return text ~ /^-?[0-9]+(\.[0-9]*)?$/ ? text : "\"" text "\""
}

/^\\COPY/ { files++; within = 1; next }
/^\\\.$/ { within = 0; next }
!within { next }

files == 1 {
    if (tolower($1) in left) next
    date = split($6, part, "-") == 3 ? part[3] "." part[2] "." part[1] : ""
    left[tolower($1)] = cell($1) "," cell(date) "," cell($2) "," cell($3) "," cell($5) "," cell($8) "," \
        cell($9) "," cell($12) "," cell($13) "," cell($14)
    total[tolower($1)] = cell($27)
    next
}

(tolower($1) in left) {
    code = tolower($1)
    print left[code] "," cell($4) "," cell($7) "," cell($8) "," cell($10) "," cell($11) "," cell($5) \
        ",\"WEB\"," sprintf("%.15g", $8 * $10) "," total[code] "," cell($6)
}
