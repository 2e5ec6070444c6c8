#!/usr/bin/env bash
# Runs the tests of WebAssembly, packs the npm package, and runs its tests and its example:
#   run.sh NATIVE_BUILD WASM_BUILD
# NATIVE_BUILD has libtorvio and torvio_kind_files. COMPARE_SECONDS of the environment is how long damaged files are
# compared.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
native=$(cd "$1" && pwd) wasm=$(cd "$2" && pwd)

echo "The tests of the core"
rm -rf "$wasm/scratch"
# They read a pipe, look at the file of a process that has ended, and change the working folder.
left_out=LoadOldPart.ReadsFromAPipeAsFromAFile:SheetEditsDeathTest.SheetThatEndsInItsOnlyBlockEndsTheProcess
left_out+=:SpecialToolFolder.IsNeverLookedUpInTheWorkingDirectory
node --no-warnings "$top/tests/wasm/run_tests.mjs" "$wasm/torvio_wasm_tests.wasm" "$wasm/scratch" --gtest_brief=1 \
  --gtest_filter="-$left_out"

echo "The package"
rm -rf "$wasm/package" "$wasm/installed" "$wasm/samples"
mkdir -p "$wasm/package" "$wasm/installed" "$wasm/samples"
cp "$top"/web/package/{index.js,index.d.ts,example.mjs,package.json,README.md} "$top/LICENSE" "$wasm/torvio.wasm" \
  "$wasm/package/"
rm -f "$wasm"/oldtorvio-*.tgz
npm pack "$wasm/package" --pack-destination "$wasm" --silent
echo '{"private": true}' > "$wasm/installed/package.json"
npm install --prefix "$wasm/installed" --offline --silent --no-audit --no-fund "$wasm"/oldtorvio-*.tgz
installed="$wasm/installed/node_modules/oldtorvio"
"$native/tests/torvio/torvio_kind_files" "$wasm/samples"
cp "$installed/example.mjs" "$wasm/installed/"
(cd "$wasm/installed" && node example.mjs "$wasm"/samples/{sheet_180,part_62,material_180}.bin)
test -s "$wasm/installed/sheet_180.bin.svg"
# The first program of docs/web.md.
sed -n '/^```js$/,/^```$/{/^```/d;p}' "$top/docs/web.md" | sed '/index\.js/,$d' > "$wasm/installed/documented.mjs"
cp "$wasm/samples/sheet_180.bin" "$wasm/installed/nest.sht"
(cd "$wasm/installed" && node documented.mjs | sed -n '1{/^sound, sheet of version 180$/!q1}; 2{/^<?xml /!q1}')
(cd "$top/web/package" && npm ci --ignore-scripts --silent --no-audit --no-fund)
cp "$top/tests/wasm/types.ts" "$wasm/installed/types.mts"
(cd "$wasm/installed" && node "$top/web/package/node_modules/typescript/bin/tsc" --noEmit --strict --target es2022 \
  --lib es2022,dom --module node16 --moduleResolution node16 types.mts)
PACKAGE="$installed" SAMPLES="$wasm/samples" node --test "$top/tests/wasm/api_test.mjs"

echo "The package and libtorvio"
TORVIO_LIBRARY=$(ls "$native"/libtorvio.so* | head -n 1)
export TORVIO_LIBRARY
npm ci --prefix "$top/bindings/node" --ignore-scripts --silent --no-audit --no-fund
cd "$wasm"
node "$top/tests/wasm/compare.mjs" "$installed" "${COMPARE_SECONDS:-60}" "$wasm/samples" "$top/fuzz/corpus"
