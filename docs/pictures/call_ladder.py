"""Draws a call as the answering side sees it: the SIP messages as a ladder, and beside each message
what the tools do with it and what they use from the library."""

from xml.sax.saxutils import escape

CALLER, ANSWERER = 70, 300  # the lifelines
MODULE, DOES, USES, RIGHT = 352, 454, 704, 1030
ROW, LINE = 27, 15
NEXT = 16  # the gap between transactions
IN, BACK = "in", "back"

# A message: direction, name, a summary of its body, and steps. A step: the source file, what it
# does, and what it uses from the library.
CALL = [
    (IN, "INVITE", "offer: audio, video", [
        ("reader", "reads the offer", ["QOVA_Capability, offer = true", "a QOVA_Media for each line"]),
        ("answerer", "copies the accepted lines\nwith the codecs in common",
         ["QOVA_Media(const QOVA_Media&)", "find(QOVA_Codec)"]),
        ("call_side", "moves a copy to the public plan",
         ["QOVA_Capability(const QOVA_Capability&)", "setPublicAddrPort"]),
        ("writer", "writes the answer", ["rcvPort, bsnd, brcv, cryptos"]),
        ("call_side", "logs the offer and both answers,\nkeeps the offer and the public answer",
         ["operator const std::string"]),
    ]),
    (BACK, "200 OK", "answer: audio, no video", []),
    (IN, "ACK", "", []),
    (IN, "re-INVITE", "the same offer", [
        ("call_side", "finds the same bytes\nand logs “unchanged”", []),
    ]),
    (BACK, "200 OK", "the same answer", []),
    (IN, "ACK", "", []),
    (IN, "re-INVITE", "hold: a=sendonly", [
        ("reader", "reads the offer", ["hold = true, brcv = false"]),
        ("answerer", "answers it like the first", ["bsnd = false"]),
        ("call_side", "moves a copy to the public plan", ["setPublicAddrPort"]),
        ("writer", "writes the next version", ["rcvPort, bsnd, brcv, cryptos"]),
        ("changes", "compares offer and answer\nwith the previous ones",
         ["operator== of QOVA_Media,", "without its parameters"]),
        ("call_side", "logs all three and “changed”", ["operator const std::string"]),
    ]),
    (BACK, "200 OK", "a=recvonly, version 2", []),
    (IN, "ACK", "", []),
    (IN, "BYE", "", [
        ("call_side", "is destroyed", ["~QOVA_Capability frees its media"]),
    ]),
    (BACK, "200 OK", "", []),
]

STYLE = """
text { font: 12px 'DejaVu Sans', Verdana, sans-serif; fill: #222222 }
.paper { fill: #ffffff }
.card { fill: #f4f7fb; stroke: #c9d6e5 }
.life { stroke: #9aa7b5; stroke-width: 1.5 }
.busy { fill: #30567d }
.end { fill: #30567d }
.end-name { fill: #ffffff; font-weight: bold; text-anchor: middle }
.arrow { stroke: #30567d; stroke-width: 1.6; fill: none }
.head { fill: #30567d }
.name { font-weight: bold; text-anchor: middle }
.body { font-size: 11px; fill: #555555; text-anchor: middle }
.column { font-size: 11px; fill: #555555 }
.module { font: 11.5px 'DejaVu Sans Mono', monospace; fill: #8a4b08 }
.uses { font: 11.5px 'DejaVu Sans Mono', monospace; fill: #30567d }
@media (prefers-color-scheme: dark) {
text { fill: #e3e8ee }
.paper { fill: #14191f }
.card { fill: #1d252e; stroke: #34424f }
.life { stroke: #66747f }
.busy, .head { fill: #8fb8e0 }
.arrow { stroke: #8fb8e0 }
.body, .column { fill: #a9b4bf }
.module { fill: #e8b273 }
.uses { fill: #9cc7f2 }
}"""


def text(x, y, words, kind):
    return f'<text x="{x:g}" y="{y:g}" class="{kind}">{escape(words)}</text>'


def arrow(way, y):
    start, tip = (CALLER, ANSWERER - 5) if way == IN else (ANSWERER - 5, CALLER)
    back = 9 if way == IN else -9
    return [f'<path class="arrow" d="M{start} {y}H{tip - back}"/>',
            f'<path class="head" d="M{tip} {y}l{-back} -4.5v9z"/>']


def height_of(step):
    return ROW + LINE * (max(len(step[1].split("\n")), len(step[2])) - 1)


def end(x, y, name):
    return [f'<rect class="end" x="{x - 46}" y="{y - 16}" width="92" height="24" rx="5"/>',
            text(x, y, name, "end-name")]


def draw():
    back, front = [], []  # drawn below the arrows, drawn above them
    y = 34
    front += end(CALLER, y, "caller") + end(ANSWERER, y, "our side")
    front += [text(MODULE + 12, y, "module", "column"), text(DOES, y, "what it does", "column"),
              text(USES, y, "what it uses from libqova", "column")]
    top = y + 8
    y += 38 - NEXT
    middle = (CALLER + ANSWERER) / 2
    for way, name, body, steps in CALL:
        if way == IN and name != "ACK":
            y += NEXT
        front += [*arrow(way, y), text(middle, y - 6, name, "name")]
        if body:
            front.append(text(middle, y + 15, body, "body"))
        height = sum(map(height_of, steps))
        if steps:
            card = y - 16
            back += [f'<rect class="card" x="{MODULE}" y="{card}" width="{RIGHT - MODULE}" '
                     f'height="{height + 6}" rx="6"/>',
                     f'<rect class="busy" x="{ANSWERER - 4}" y="{card}" width="8" '
                     f'height="{height + 6}" rx="3"/>',
                     f'<path class="life" d="M{ANSWERER + 4} {y}H{MODULE}"/>']
            row = y + 4
            for step in steps:
                module, does, uses = step
                front.append(text(MODULE + 12, row, module, "module"))
                front += [text(DOES, row + LINE * at, line, "does")
                          for at, line in enumerate(does.split("\n"))]
                front += [text(USES, row + LINE * at, line, "uses") for at, line in enumerate(uses)]
                row += height_of(step)
        y += max(height + 26, 44 if body else 34)
    bottom = y - 6
    lives = [f'<path class="life" d="M{x} {top}V{bottom}"/>' for x in (CALLER, ANSWERER)]
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{RIGHT + 18}" height="{bottom + 14}" '
        f'viewBox="0 0 {RIGHT + 18} {bottom + 14}">',
        "<title>A call, message by message, and what the answering side does</title>",
        f"<style>{STYLE}\n</style>",
        '<rect class="paper" width="100%" height="100%"/>',
        *lives, *back, *front, "</svg>", ""])
