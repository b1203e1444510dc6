"""Draws a log text with a number at each field, and below it a legend."""

from xml.sax.saxutils import escape

TAB = 4         # columns
COLUMN = 7.0    # width of a character in pixels
LEFT, TOP = 24, 18
ROW, PLAIN_ROW = 36, 20
LEGEND_ROW = 17
LEGEND_COLUMN = 300

COLOURS = {
    "QOVA_Capability": "#30567d",
    "QOVA_Media": "#2c6e49",
    "QOVA_AudioAttribute": "#8a4b08",
    "QOVA_Crypto and QOVA_CryptoKey": "#8b1e3f",
    "QOVA_FaxAttribute": "#5b3a8c",
}

# The fields of each class: line of the text (from 0), characters, member, meaning.
FIELDS = {
    "QOVA_Capability": [
        (0, "offer", "offer", "offer or answer"),
        (0, "Not Hold", "hold", "Hold or Not Hold"),
        (0, "silenceSuppSdp=no", "silenceSuppSdp", "yes or no"),
        (0, "'", "marked", "only when true"),
        (1, "Filtered=", "filteredMedia", "only when not empty"),
        (12, "Pass-through=", "passThrough", "only when not empty"),
    ],
    "QOVA_Media": [
        (2, "Audio", "mediaType", "a name"),
        (2, "Accepted", "mediaStatus", "a name"),
        (2, "192.0.2.7", "address", "its text"),
        (2, "32000", "sndPort", "first send port"),
        (2, "32001", "sndPort2", "second send port"),
        (2, "32000", "rcvPort", "first receive port"),
        (2, "32001", "rcvPort2", "second receive port"),
        (2, "bsnd=1", "bsnd", "1 or 0"),
        (2, "brcv=1", "brcv", "1 or 0"),
        (2, "AMR-WB(octet-align=1)", "amrwbParam", "the given parameters"),
        (2, "opus(usedtx=1)", "opusParam", "the given parameters"),
        (3, "Attributes :", "attributes", "the first on this line"),
        (4, "1", "cryptoCount", "the owner's number"),
    ],
    "QOVA_AudioAttribute": [
        (3, "G722.2", "codec", "a name, or DYN(101)"),
        (3, "Accepted", "status", "without a label"),
        (3, "framing=20", "framing", "ms"),
        (3, "vad=0", "vad", "1 or 0"),
        (3, "echo=0", "echo", "1 or 0"),
        (3, "mxFraming=40", "mxFraming", "ms"),
        (3, "MF=101", "mf", "a number, not a name"),
    ],
    "QOVA_Crypto and QOVA_CryptoKey": [
        (5, "tag=1", "tag", ""),
        (5, "AES_CM_128_HMAC_SHA1_80", "algo", "the suite's SDP name"),
        (5, "key=", "key", "never shown"),
        (5, "lifetime=1048576", "lifetime", "packets"),
        (5, "mki=50000000", "mki", "all 8 bytes, no separator"),
        (5, "mkiSize=1", "mkiSize", "bytes"),
    ],
    "QOVA_FaxAttribute": [
        (7, "T38udptl", "transport", "a name"),
        (7, "red=0", "red", ""),
        (7, "depth=0", "depth", ""),
        (7, "mxRate=14400", "mxRate", "bit/s"),
        (8, "TRFTCF", "rateMgt", "a name"),
        (8, "fillBit=0", "fillBit", "1 or 0"),
        (8, "transMMR=0", "transMMR", "1 or 0"),
        (8, "transJBIG=0", "transJBIG", "1 or 0"),
        (9, "mxBuffer=2000", "mxBuffer", "bytes; no space before /"),
        (9, "mxDgram=512", "mxDgram", "bytes"),
        (9, "errCorr=1", "errCorr", "a plain number"),
    ],
}

LEGEND = [["QOVA_Capability", "QOVA_Media"],
          ["QOVA_AudioAttribute", "QOVA_Crypto and QOVA_CryptoKey"],
          ["QOVA_FaxAttribute"]]


def text_at(x, y, words, width=None, style=""):
    fixed = f' textLength="{width:g}" lengthAdjust="spacingAndGlyphs"' if width else ""
    return f'<text x="{x:g}" y="{y:g}"{fixed}{style}>{escape(words)}</text>'


def badge(x, y, number, colour):
    return (f'<circle cx="{x:g}" cy="{y:g}" r="7.5" fill="{colour}"/>'
            + text_at(x, y + 3, str(number), style=' class="number"'))


def place(lines):
    """Returns the fields in text order: line, first and last column, number, class, rest."""
    found = []
    for owner, fields in FIELDS.items():
        searched = {}
        for line, words, member, meaning in fields:
            start = lines[line].find(words, searched.get(line, 0))
            if start < 0:
                raise SystemExit(f"line {line} of the log text has no \"{words}\" for {member}")
            searched[line] = start + len(words)
            found.append((line, start, start + len(words), owner, member, meaning))
    found.sort()
    return [(*field[:3], number, *field[3:]) for number, field in enumerate(found, 1)]


def draw(text):
    lines = [line.expandtabs(TAB) for line in text.splitlines()]
    fields = place(lines)
    marked = {field[0] for field in fields}

    out = []
    y = TOP
    for index, line in enumerate(lines):
        y += ROW if index in marked else PLAIN_ROW
        for at, start, end, number, owner, _, _ in fields:
            if at == index:
                x, width = LEFT + start * COLUMN, (end - start) * COLUMN
                colour = COLOURS[owner]
                out.append(f'<rect x="{x - 1:g}" y="{y - 12:g}" width="{width + 2:g}" height="16" '
                           f'rx="2" fill="{colour}" fill-opacity="0.13"/>')
                out.append(f'<path d="M{x + width / 2:g} {y - 16:g}V{y - 12:g}" '
                           f'stroke="{colour}"/>')
                out.append(badge(x + width / 2, y - 21, number, colour))
        column = 0
        for piece in line.split(" "):  # word by word, so that no font moves a field off its mark
            if piece:
                out.append(text_at(LEFT + column * COLUMN, y, piece, len(piece) * COLUMN,
                                   ' class="log"'))
            column += len(piece) + 1

    top = y + 34
    bottom = top
    for column, owners in enumerate(LEGEND):
        x, y = LEFT + column * LEGEND_COLUMN + 8, top
        for owner in owners:
            out.append(text_at(x - 8, y + 4, owner, style=f' class="owner" style="fill: {COLOURS[owner]}"'))
            y += LEGEND_ROW + 2
            for _, _, _, number, of, member, meaning in fields:
                if of == owner:
                    out.append(badge(x, y, number, COLOURS[owner]))
                    out.append(text_at(x + 14, y + 4, member, style=' class="log"'))
                    out.append(text_at(x + 124, y + 4, meaning, style=' class="meaning"'))
                    y += LEGEND_ROW
            y += 8
        bottom = max(bottom, y)

    width = LEFT * 2 + max(map(len, lines)) * COLUMN
    height = bottom + 6
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:g}" height="{height:g}" '
        f'viewBox="0 0 {width:g} {height:g}">',
        "<title>A log text, field by field</title>",
        "<style>",
        "text { font: 11px 'DejaVu Sans', sans-serif; fill: #222222 }",
        ".log { font: 11.63px 'DejaVu Sans Mono', monospace }",
        ".number { font-size: 8.5px; font-weight: bold; fill: white; text-anchor: middle }",
        ".owner { font-size: 12px; font-weight: bold }",
        ".meaning { fill: #555555 }",
        "</style>",
        '<rect width="100%" height="100%" fill="white"/>',
        *out, "</svg>", ""])
