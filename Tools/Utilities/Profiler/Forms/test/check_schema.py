"""Holds JSON files against a schema: check_schema.py SCHEMA FILE..."""
import json
import sys

import jsonschema

with open(sys.argv[1], encoding='utf-8') as schema_file:
    schema = json.load(schema_file)
jsonschema.Draft7Validator.check_schema(schema)
for path in sys.argv[2:]:
    with open(path, encoding='utf-8') as file:
        jsonschema.Draft7Validator(schema).validate(json.load(file))
