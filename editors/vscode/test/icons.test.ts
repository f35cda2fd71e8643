// The icon sheets become PNG files that hold exactly the drawn pixels, and every picture the
// view asks for exists at both sizes.
import { test } from 'node:test';
import * as assert from 'node:assert/strict';
import * as fs from 'node:fs';
import * as path from 'node:path';
import { iconNames } from '../src/treeModel';

// eslint-disable-next-line @typescript-eslint/no-var-requires
const { parseSheet, encodePng, decodePng } = require('../../scripts/icon-sheet.js');
const art = path.join(__dirname, '../../../../src/windows/icons/art');
const built = path.join(__dirname, '../../media/icons');

test('a sheet\'s faults are reported with the file and line', () => {
  const good = 'size 2\ncolour k 000000\nicon a\nk.\n.k\n';
  assert.equal(parseSheet(good, 's.txt').icons.size, 1);
  assert.throws(() => parseSheet('icon a\nk.\n.k\n', 's.txt'), /s\.txt:1: an icon before the sheet's size/);
  assert.throws(() => parseSheet('size 2\ncolour k 000000\nicon a\nk.\n.\n', 's.txt'), /s\.txt:5: icon a needs 2 rows of 2 pixels/);
  assert.throws(() => parseSheet('size 2\nicon a\nkx\n..\n', 's.txt'), /s\.txt:3: unknown colour 'k' in icon a/);
  assert.throws(() => parseSheet('size 2\nwhat\n', 's.txt'), /s\.txt:2: cannot read "what"/);
  assert.throws(() => parseSheet('size 2\ncolour k 000000\nicon a\nk.\n', 's.txt'), /s\.txt:5: icon a needs/);
});

test('a PNG written from a sheet decodes to the same pixels, transparency included', () => {
  const { icons } = parseSheet('size 3\ncolour r FF0000\ncolour g 00FF00\nicon a\nr.g\n.r.\ngg.\n');
  const pixels: Uint8Array = icons.get('a');
  const png = decodePng(encodePng(3, 3, pixels));
  assert.equal(png.width, 3);
  assert.deepEqual([...png.rgba.slice(0, 12)], [255, 0, 0, 255, 0, 0, 0, 0, 0, 255, 0, 255]);
  assert.deepEqual(png.rgba, pixels);
  const corrupt = encodePng(3, 3, pixels);
  corrupt[40] ^= 1;
  assert.throws(() => decodePng(corrupt), /bad CRC/);
});

test('every picture the view uses was drawn at 16 and 32 pixels and built from the sheets', () => {
  for (const [sheet, suffix, size] of [['icons16.txt', '', 16], ['icons32.txt', '@2x', 32]] as const) {
    const { icons } = parseSheet(fs.readFileSync(path.join(art, sheet), 'utf8'), sheet);
    for (const name of iconNames) {
      assert.ok(icons.has(name), `${sheet} has no icon ${name}`);
      const png = decodePng(fs.readFileSync(path.join(built, `${name}${suffix}.png`)));
      assert.equal(png.width, size);
      assert.deepEqual(png.rgba, icons.get(name), `${name}${suffix}.png differs from ${sheet}`);
    }
  }
});
