// Where the arbolet program comes from, and the settings the server is sent.
import { test } from 'node:test';
import * as assert from 'node:assert/strict';
import { PathEnvironment, resolveServerPath, serverExecutable } from '../src/serverPath';
import { codePageOfEncoding, serverSettings } from '../src/settings';

function env(platform: NodeJS.Platform, arch: string, files: string[], searchPath?: string, pathExt?: string): PathEnvironment {
  return { platform, arch, extensionPath: platform === 'win32' ? 'C:\\ext' : '/ext', searchPath, pathExt, isFile: (f) => files.includes(f) };
}

test('the setting wins, then the copy shipped for the platform, then PATH', () => {
  const linux = ['/ext/bin/linux-x64/arbolet', '/usr/bin/arbolet'];
  assert.deepEqual(resolveServerPath('/opt/a/arbolet', env('linux', 'x64', linux, '/usr/bin')), { command: '/opt/a/arbolet', source: 'setting' });
  // A chosen path that does not exist is still the one used, so its failure is reported.
  assert.deepEqual(resolveServerPath(' /nowhere/arbolet ', env('linux', 'x64', linux)), { command: '/nowhere/arbolet', source: 'setting' });
  assert.deepEqual(resolveServerPath('', env('linux', 'x64', linux, '/usr/bin')), { command: '/ext/bin/linux-x64/arbolet', source: 'bundled' });
  assert.deepEqual(resolveServerPath(undefined, env('linux', 'x64', ['/usr/bin/arbolet'], '/bin::/usr/bin')), { command: '/usr/bin/arbolet', source: 'path' });
  // No Linux build for ARM is shipped, so PATH serves it even if an x64 copy is there.
  assert.deepEqual(resolveServerPath(42, env('linux', 'arm64', linux, '/usr/bin')), { command: '/usr/bin/arbolet', source: 'path' });
  assert.deepEqual(resolveServerPath('', env('darwin', 'arm64', [], '/usr/bin')), { tried: ['arbolet on PATH'] });
  assert.deepEqual(resolveServerPath('', env('linux', 'x64', [], '')), { tried: ['/ext/bin/linux-x64/arbolet', 'arbolet on PATH'] });
});

test('on Windows the shipped arbolet.exe is found, and PATH is searched with PATHEXT', () => {
  assert.deepEqual(resolveServerPath('', env('win32', 'x64', ['C:\\ext\\bin\\win32-x64\\arbolet.exe'])), {
    command: 'C:\\ext\\bin\\win32-x64\\arbolet.exe',
    source: 'bundled',
  });
  assert.deepEqual(resolveServerPath('', env('win32', 'x64', ['D:\\tools\\arbolet.exe'], 'C:\\Windows;"D:\\tools"', '.COM;.EXE')), {
    command: 'D:\\tools\\arbolet.exe',
    source: 'path',
  });
  assert.deepEqual(resolveServerPath('', env('win32', 'ia32', ['D:\\t\\arbolet.cmd'], 'D:\\t', '.CMD')), { command: 'D:\\t\\arbolet.cmd', source: 'path' });
});

test('the code page follows the VB6 files\' encoding unless arbolet.codePage names one', () => {
  assert.equal(codePageOfEncoding('windows1252'), 1252);
  assert.equal(codePageOfEncoding('windows1251'), 1251);
  assert.equal(codePageOfEncoding('windows1253'), 1253);
  assert.equal(codePageOfEncoding('shiftjis'), 932);
  assert.equal(codePageOfEncoding('utf8'), undefined);
  assert.equal(codePageOfEncoding(undefined), undefined);
  const settings = (values: Record<string, unknown>, encoding: unknown) => serverSettings((k) => values[k], encoding);
  assert.equal(settings({}, 'shiftjis').codePage, 932);
  assert.equal(settings({ codePage: 0 }, 'windows1251').codePage, 1251);
  assert.equal(settings({ codePage: 1250 }, 'windows1251').codePage, 1250);
  // A UTF-8 setting has no ANSI code page; the server keeps VB6's default rather than guessing.
  assert.equal(settings({}, 'utf8').codePage, 1252);
  assert.equal(settings({ codePage: -5 }, undefined).codePage, 1252);
  assert.equal(settings({ codePage: 1251.5 }, undefined).codePage, 1252);
});

test('the seven display options go to the server as booleans, true only when set to true', () => {
  const s = serverSettings((k) => ({ 'display.hideEnums': true, 'display.sortByName': 'yes', 'display.hideTypes': 1 })[k], undefined);
  assert.deepEqual(s.display, {
    hideVariables: false,
    hideConstants: false,
    hideCompiler: false,
    hideEnums: true,
    hideTypes: false,
    hideSectionEnds: false,
    sortByName: false,
  });
});

test('the server is started as "arbolet lsp" and nothing more', async () => {
  assert.deepEqual(serverExecutable('/x/arbolet'), { command: '/x/arbolet', args: ['lsp'] });
  // The same options given to vscode-languageclient's own start-up code: it must add no argument.
  const transport = (serverExecutable('/x/arbolet') as { transport?: unknown }).transport;
  assert.equal(transport, undefined, 'a named transport makes the client append --stdio or --pipe');
});
