"""Validates the documents of a folder against the schemas in it, and the schemas themselves.

KIND.schema is the schema of KIND.*.valid, which have to be valid, and of KIND.*.invalid, which must not be.
"""
import json
import pathlib
import sys

import jsonschema

folder = pathlib.Path(sys.argv[1])
wrong, counts = [], {"valid": 0, "invalid": 0}
for schema_path in sorted(folder.glob("*.schema")):
    schema = json.loads(schema_path.read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    for path in sorted(folder.glob(schema_path.stem + ".*")):
        expected = path.suffix[1:]
        if expected not in counts:
            continue
        counts[expected] += 1
        error = next(validator.iter_errors(json.loads(path.read_text(encoding="utf-8"))), None)
        if (error is None) != (expected == "valid"):
            wrong.append(f"{path.name}: {error.json_path + ': ' + error.message[:200] if error else 'is valid'}")
print(f"valid: {counts['valid']}, invalid: {counts['invalid']}")
sys.exit("\n".join(wrong) if wrong else 0)
