// The .vsix that `npm run package` made holds what the extension runs and shows: its manifest,
// the bundled code, the grammars, the icons and the arbolet programs put under bin/.
import { test } from 'node:test';
import * as assert from 'node:assert/strict';
import * as fs from 'node:fs';
import * as path from 'node:path';
import { readZip } from './zip';
import { iconNames } from '../src/treeModel';
import { displayOptionNames } from '../src/settings';

const root = path.join(__dirname, '../..');
const manifest = JSON.parse(fs.readFileSync(path.join(root, 'package.json'), 'utf8'));
const vsixPath = process.env.ARBOLET_VSIX ?? path.join(root, 'out', `${manifest.name}-${manifest.version}.vsix`);
const vsix = readZip(fs.readFileSync(vsixPath));
const file = (name: string) => {
  const e = vsix.get(`extension/${name}`);
  assert.ok(e, `${name} is not in ${vsixPath}`);
  return e;
};

test('the manifest names the languages, grammars, defaults, view and settings the extension needs', () => {
  const pkg = JSON.parse(file('package.json').data().toString('utf8'));
  const cmake = fs.readFileSync(path.join(root, '../../CMakeLists.txt'), 'utf8');
  assert.equal(pkg.version, /project\(Arbolet VERSION ([0-9.]+)/.exec(cmake)?.[1], 'the extension has the product\'s version');
  assert.ok(file(pkg.main.replace(/^\.\//, '')).data().length > 10000);
  const languages = Object.fromEntries(pkg.contributes.languages.map((l: { id: string; extensions: string[] }) => [l.id, l.extensions]));
  assert.deepEqual(languages, {
    vb6: ['.bas', '.cls', '.frm', '.ctl', '.pag', '.dob', '.dsr'],
    'vb6-project': ['.vbp', '.vbg'],
  });
  for (const g of pkg.contributes.grammars) JSON.parse(file(g.path.replace(/^\.\//, '')).data().toString('utf8'));
  for (const l of pkg.contributes.languages) JSON.parse(file(l.configuration.replace(/^\.\//, '')).data().toString('utf8'));
  for (const lang of ['[vb6]', '[vb6-project]']) {
    assert.deepEqual(pkg.contributes.configurationDefaults[lang], { 'files.encoding': 'windows1252', 'files.eol': '\r\n' });
  }
  const settings = Object.keys(pkg.contributes.configuration.properties).sort();
  assert.deepEqual(settings, ['arbolet.codePage', 'arbolet.followCursor', 'arbolet.path', ...displayOptionNames.map((n) => `arbolet.display.${n}`)].sort());
  assert.deepEqual(pkg.contributes.views.explorer.map((v: { id: string; name: string }) => [v.id, v.name]), [['arboletProjects', 'VB6 Projects']]);
  assert.ok(pkg.activationEvents.includes('workspaceContains:**/*.vbp'));
});

test('the icons, the README and its picture are inside; sources and node_modules are not', () => {
  for (const name of iconNames) {
    for (const f of [`media/icons/${name}.png`, `media/icons/${name}@2x.png`]) {
      assert.equal(file(f).data().readUInt32BE(0), 0x89504e47, f);
    }
  }
  const readme = file('readme.md').data().toString('utf8');
  for (const m of readme.matchAll(/!\[[^\]]*\]\(([^)]+)\)/g)) file(m[1]);
  const names = [...vsix.keys()];
  assert.deepEqual(names.filter((n) => /node_modules|\/src\/|\/test\/|\.ts$|\.map$/.test(n)), []);
});

test('the arbolet programs put under bin/ before packing are inside, the Linux one executable', (t) => {
  const programs = ['bin/linux-x64/arbolet', 'bin/win32-x64/arbolet.exe'].filter((b) => fs.existsSync(path.join(root, b)));
  if (programs.length === 0) {
    t.skip('no arbolet program under bin/ (scripts/package.sh puts them there)');
    return;
  }
  for (const p of programs) {
    const inside = file(p).data();
    assert.ok(inside.equals(fs.readFileSync(path.join(root, p))), `${p} differs from the one packed`);
  }
  if (programs.includes('bin/linux-x64/arbolet')) {
    assert.equal(file('bin/linux-x64/arbolet').data().subarray(0, 4).toString('latin1'), '\x7fELF');
    assert.ok(file('bin/linux-x64/arbolet').mode & 0o100, 'the Linux program keeps its execute bit');
  }
  if (programs.includes('bin/win32-x64/arbolet.exe')) {
    const exe = file('bin/win32-x64/arbolet.exe').data();
    assert.equal(exe.subarray(0, 2).toString('latin1'), 'MZ');
    // The PE header's machine type: 0x8664 is x64.
    assert.equal(exe.readUInt16LE(exe.readUInt32LE(0x3c) + 4), 0x8664);
  }
});
