"""Checks what vel prints with --json against the schema: schema.py VEL SCHEMA MODULES DATA. Exit
status 77 when the validator is not installed."""
import json, subprocess, sys

try:
    import jsonschema
except ImportError as missing:
    print("skipped:", missing)
    sys.exit(77)

vel, schema_file, modules, data = sys.argv[1:]
schema = json.load(open(schema_file))


def check(word, *arguments, status=0):
    done = subprocess.run([vel, word, "--json", *arguments], capture_output=True, text=True)
    assert done.returncode == status, (word, arguments, done.stderr)
    document = json.loads(done.stdout, object_pairs_hook=sorted_keys)
    jsonschema.Draft202012Validator({"$ref": "#/$defs/" + word, "$defs": schema["$defs"]}).validate(document)
    return document


def sorted_keys(pairs):
    assert pairs == sorted(pairs, key=lambda p: p[0]), pairs
    return dict(pairs)


subprocess.run([vel, "save", "f.vel", "i=" + data + "/iris.csv", "w=" + data + "/west0067.mtx",
                "n=[nan inf -inf]", "l=int64(9007199254740994)", "t='a'"], check=True)
subprocess.run([vel, "call", modules + "/word_count.vex", "'a b'", "-o", "s.vel"], check=True)
check("ls", "-r", "f.vel", "s.vel")
shown = check("show", "f.vel")
assert shown["n"]["values"] == [["NaN", "Inf", "-Inf"]] and shown["l"]["values"] == [["9007199254740994"]]
check("show", "s.vel")
check("show", "f.vel", "n", "--stats")
check("check", "f.vel", data + "/iris.csv", status=1)
check("diff", "f.vel", "s.vel", status=1)
check("diff", "f.vel", "f.vel", "--nan-equal")
check("call", modules + "/zscore.vex", data + "/iris.csv", "--stats")
check("call", modules + "/zscore.vex", "'a'", "--stats", status=1)
for what in ("f.vel:i", "f.vel:n", "f.vel:w", "s.vel"):
    check("plot", what)
