"""Says of each JSON document whether it fits a schema: fits_schema.py SCHEMA DOCUMENTS

DOCUMENTS holds one document a line; one line of output says what is wrong with each, an empty one that nothing is.
"""
import json
import sys

import fastjsonschema

with open(sys.argv[1]) as file:
    validate = fastjsonschema.compile(json.load(file))
with open(sys.argv[2]) as file:
    for line in file:
        try:
            validate(json.loads(line))
            print()
        except fastjsonschema.JsonSchemaValueException as mistake:
            print(" ".join(str(mistake).split()) or "does not fit")
