"""The list of mutants that behave the same, the verdicts of runs, and what the two make together."""
import os
import re
import subprocess
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

EQUIVALENT = Path(__file__).resolve().parent / "equivalent.txt"
VERDICTS = ["killed", "same code", "survived", "broken"]
HEADING = "| | mutants | killed | same code | listed as behaving the same | left |"


@dataclass
class Verdict:
    path: str
    verdict: str  # one of VERDICTS; "broken" does not compile
    by: str = ""  # suite and test
    seconds: float = 0
    programs: str = ""  # tells the suites that it comes from


def squeezed(text):
    return " ".join(text.split())


def read_entries():
    """Returns the listed mutants: [(path, line before or "", changed lines, what they become)]."""
    entries = []
    for paragraph in re.split(r"\n\s*\n", EQUIVALENT.read_text()):
        lines = [line for line in paragraph.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        path, reason = lines[0].split(": ", 1)
        changes = re.findall(r"(?:^ (.*)\n)?((?:^-.*\n)+)((?:^\+.*\n)*)", "\n".join(lines[1:]) + "\n", re.MULTILINE)
        if not reason.strip() or not changes:
            raise SystemExit(f"mutation: {EQUIVALENT.name} gives no reason or no change at {lines[0]}")
        for above, before, after in changes:
            removed, added = (squeezed(" ".join(line[1:] for line in part.splitlines())) for part in (before, after))
            entries.append((path, squeezed(above), removed, added))
    return entries


def mark(mutants):
    """Marks the listed mutants. Returns the entries that do not name exactly one, in words."""
    errors = []
    by_change = {}
    for mutant in mutants:
        by_change.setdefault((mutant.path, squeezed(mutant.before), squeezed(mutant.after)), []).append(mutant)
    for path, above, before, after in read_entries():
        named = [mutant for mutant in by_change.get((path, before, after), [])
                 if not above or squeezed(mutant.above) == above]
        if len(named) == 1 and not named[0].listed:
            named[0].listed = True
        else:
            errors.append(f"{EQUIVALENT.name}: {path}: names {len(named)} mutants, or one twice: - {before} + {after}")
    return errors


def read_verdicts(folder):
    """Returns the verdicts of all runs, the latest of each mutant: {id: Verdict}."""
    verdicts = {}
    for record in sorted(folder.glob("*.tsv"), key=lambda record: record.stat().st_mtime):
        for line in record.read_text().splitlines():
            fields = line.split("\t")
            if len(fields) == 6:  # an interrupted run can leave less
                verdicts[fields[0]] = Verdict(fields[1], fields[2], fields[4], float(fields[3]), fields[5])
    return verdicts


def judge(mutants, verdicts):
    """Returns what is wrong with the tests or with the list, in words."""
    errors = []
    for mutant in mutants:
        verdict = verdicts[mutant.id]
        place = f"{mutant.path}:{mutant.line}: - {squeezed(mutant.before)} + {squeezed(mutant.after)}"
        if mutant.listed and verdict.verdict != "survived":
            errors.append(f"{EQUIVALENT.name} lists a mutant that is \"{verdict.verdict}\" {verdict.by}: {place}")
        elif not mutant.listed and verdict.verdict == "survived":
            errors.append(f"no test kills {place}")
    return errors


def table(mutants, verdicts, rooms):
    """Returns the table of docs/reliability.md."""
    counts = Counter()
    for mutant in mutants:
        verdict = verdicts[mutant.id].verdict
        kind = "listed" if mutant.listed and verdict == "survived" else verdict
        for room in (os.path.dirname(mutant.path), "all"):
            counts[room, kind] += 1
    lines = [HEADING, "|---|---|---|---|---|---|"]
    for room in [*rooms, "all"]:
        numbers = [counts[room, kind] for kind in ("killed", "same code", "listed", "survived")]
        name = room if room == "all" else f"`{room}/`"
        lines.append("| " + " | ".join([name, *(f"{number:,}" for number in [sum(numbers), *numbers])]) + " |")
    return "\n".join(lines)


def write(page, text):
    """Puts the table into the page, with the commit that it was measured on."""
    commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], check=True, text=True, capture_output=True,
                            cwd=page.parent).stdout.strip()
    begin, end = "<!-- mutation table -->\n", "<!-- end of the mutation table -->"
    before, rest = page.read_text().split(begin)
    after = rest.split(end)[1]
    page.write_text(f"{before}{begin}{text}\n\nMeasured on commit `{commit}`.\n{end}{after}")
