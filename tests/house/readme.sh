#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Each block of C, C++ or Python in the documents stands, line for line, in a file that is compiled
# or run; each script and relative link that they name exists.
set -euo pipefail
cd "$1"
status=0
mapfile -t documents < <(ls README.md CONTRIBUTING.md CHANGELOG.md SECURITY.md docs/*.md python/*.md)
/usr/bin/env python3 - "${documents[@]}" <<'PYTHON' || status=1
import glob, os, re, sys

compiled = [open(name).read() for folder in ("examples", "veltra")
            for kind in ("cpp", "c", "py") for name in glob.glob(f"{folder}/**/*.{kind}", recursive=True)]
status = blocks = 0
for document in sys.argv[1:]:
    text = open(document).read()
    for block in re.findall(r"^```(?:cpp|c|python)\n(.*?)^```", text, re.M | re.S):
        blocks += 1
        if not any(block in source for source in compiled):
            print(f"{document}: no file that is compiled or run holds this block\n{block}")
            status = 1
    prose = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    for target in re.findall(r"\]\((?!https?:|#)([^)#]+)", prose):
        if not os.path.exists(os.path.join(os.path.dirname(document), target)):
            print(f"{document}: no {target}")
            status = 1
print(f"{blocks} blocks of code, {len(sys.argv) - 1} documents")
sys.exit(status or blocks == 0)
PYTHON
exit $status
