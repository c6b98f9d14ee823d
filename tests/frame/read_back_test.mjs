// Reads back with apache-arrow what we wrote as Arrow, with DuckDB what we wrote as text, and compares the values.
//
//     node read_back_test.mjs SAMPLE-PROGRAM FOLDER-OF-PACKAGES
//
// Exits 77 where the packages are not installed, unless LUMBARN_REQUIRE_NODE says that they are.
import assert from "node:assert";
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import { createRequire } from "node:module";
import os from "node:os";
import path from "node:path";

const [program, packages] = process.argv.slice(2);
const load = createRequire(path.join(path.resolve(packages), "index.js"));
let arrow, duckdb;
try {
  arrow = load("apache-arrow");
  duckdb = load("@duckdb/node-api");
} catch (missing) {
  console.log(missing.message);
  process.exit(process.env.LUMBARN_REQUIRE_NODE ? 1 : 77);
}

const folder = fs.mkdtempSync(path.join(os.tmpdir(), "lumbarn-"));
process.on("exit", () => fs.rmSync(folder, { recursive: true }));
execFileSync(program, [folder]);
const file = (name) => path.join(folder, name);
const table = (name) => arrow.tableFromIPC(fs.readFileSync(file(name)));

const day = Date.UTC(2001, 6, 1, 15, 6, 40); // 994,000,000 s
const given = (condition, value) => (condition ? value : null);
const expected = (i) => ({
  n: i,
  big: given(i % 5 != 1, BigInt(i - 500) << 40n),
  "WBHP:P1": given(i % 7 != 2, Math.fround(i / 3)),
  exact: given(i % 5 != 3, Math.sqrt(i) * 1e-7),
  text: given(i % 4 != 0, ",".repeat(i % 9) + '"P\u00e9"'),
  grid: given(i % 5 != 0, ["ROOT", "L\u00e9 1"][i % 2]),
  date: given(i % 6 != 1, day + 86401000 * i),
  open: given(i % 8 != 2, i % 3 == 0),
  at: given(i % 9 != 4, [i, -0.25, 1e10]),
});

for (const name of ["all.arrow", "all.arrows"]) {
  const read = table(name);
  assert.equal(read.numRows, 1000);
  for (let i = 0; i < read.numRows; ++i) {
    const row = read.get(i).toJSON();
    if (row.at) row.at = [...row.at];
    if (row.date !== null) row.date = Number(row.date);
    assert.deepStrictEqual({ ...row }, expected(i));
  }
  const field = read.schema.fields[2];
  assert.deepEqual(Object.fromEntries(field.metadata), {
    mnemonic: "WBHP", member: "P1", unit: "BARSA", description: "bottom hole pressure",
  });
  assert.equal(read.schema.fields[0].nullable, false);
  assert.equal(String(read.schema.fields[6].type), "Timestamp<MICROSECOND>");
}
const empty = table("empty.arrow");
assert.equal(empty.numRows, 0);
assert.deepEqual(empty.schema.names, table("all.arrow").schema.names);

const connection = await (await duckdb.DuckDBInstance.create(":memory:")).connect();
const rowsOf = async (query) => (await connection.runAndReadAll(query)).getRowObjects();
const single = (value) => (value === null ? null : Math.fround(Number(value)));
const texts = await rowsOf(`select * from read_csv('${file("all.csv")}', all_varchar = true, strict_mode = true)`);
const json = await rowsOf(`select * from read_ndjson('${file("all.ndjson")}',
  columns = {n: 'INTEGER', big: 'BIGINT', "WBHP:P1": 'FLOAT', exact: 'DOUBLE', text: 'VARCHAR', grid: 'VARCHAR',
             date: 'TIMESTAMP', open: 'BOOLEAN', "at": 'FLOAT[]'})`);
assert.equal(texts.length, 1000);
assert.equal(json.length, 1000);
for (let i = 0; i < 1000; ++i) {
  const row = expected(i);
  const { date, at, ...rest } = json[i];
  assert.equal(date === null ? null : Number(date.micros / 1000n), row.date);
  assert.deepEqual(at.items, row.at ?? [null, null, null]);
  for (const name of ["n", "big", "WBHP:P1", "exact", "text", "grid", "open"]) assert.equal(rest[name], row[name]);
  assert.equal(Number(texts[i].n), i);
  assert.equal(texts[i].big === null ? null : BigInt(texts[i].big), row.big);
  assert.equal(single(texts[i]["WBHP:P1"]), row["WBHP:P1"]);
  assert.equal(texts[i].exact === null ? null : Number(texts[i].exact), row.exact);
  assert.equal(texts[i].text, row.text);
  assert.equal(texts[i].grid, row.grid);
  assert.equal(single(texts[i]["at.1"]), row.at ? row.at[0] : null);
}
console.log("read back: 1000 rows from all.arrow, all.arrows, all.csv and all.ndjson");
