#!/usr/bin/env python3
"""Whether the schema of a configuration judges as `check-config` does: it takes what is shipped and refuses each file with a
mistake, but for those whose mistake no schema sees.

    schema_test.py ROOT"""

import json
import pathlib
import sys

import jsonschema

ROOT = pathlib.Path(sys.argv[1])
CONFIGURATIONS = ROOT / "tests/unit/statectl/configurations"

# Each with what it would have to know.
TAKEN = {
    "area_behind_the_end": "the sum of two numbers",
    "area_over_the_first_byte": "whether the area is empty",
    "calls_longer_than_the_watchdog": "the unit",
    "cut_not_at_the_end": "the sum of two numbers",
    "file_of_somebody_else": "the unit",
    "more_bits_than_the_area_has": "another number",
    "more_than_the_maximum": "another number",
    "name_that_differs": "the other lists",
    "one_file_for_both": "the other path",
    "overlapping_areas": "the sum of two numbers",
    "path_in_tmp": "the unit",
    "path_of_a_device": "the unit",
    "path_that_the_unit_cannot_write": "the unit",
    "pattern_with_the_bit_of_ecu_alive": "whether network management is used",
    "pattern_without_a_bit": "whether network management is used",
    "repeated_member": "the text",
    "wake_up_in_the_ac_area": "where the area is",
    "wake_up_outside": "another number",
    "wake_up_over_the_awake_bit": "whether network management is used",
    "wrapped_areas": "the sum of two numbers",
}
NO_JSON = {"comment", "cut_short"}

schema = json.loads((ROOT / "deploy/schema/ap_statemanager.schema.json").read_text())
jsonschema.Draft202012Validator.check_schema(schema)
judge = jsonschema.Draft202012Validator(schema)

mistaken = {path.stem: path for path in CONFIGURATIONS.glob("*.json")}
shipped = [mistaken.pop("good"), *(ROOT / "deploy/config").glob("*.json")]
wrong = [f"{path} is refused: {error.message}" for path in shipped for error in judge.iter_errors(json.loads(path.read_text()))]
wrong += [f"{name} is not there" for name in {*TAKEN, *NO_JSON} - set(mistaken)]
for name in sorted(set(mistaken) - NO_JSON):
    is_taken = judge.is_valid(json.loads(mistaken[name].read_text()))
    if is_taken != (name in TAKEN):
        wrong.append(f"{name} is {'taken' if is_taken else 'refused'}")

print(*wrong, f"{len(shipped)} good and {len(mistaken)} mistaken configurations looked at", sep="\n")
sys.exit(1 if wrong or len(shipped) < 4 or len(mistaken) < 50 else 0)
