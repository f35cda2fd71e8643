// Makes `require('vscode')` load the fake, as VS Code's extension host would load the real one.
import Module = require('module');

const fake = require.resolve('./fakeVscode');
const mod = Module as unknown as { _resolveFilename: (request: string, ...rest: unknown[]) => string };
const original = mod._resolveFilename;
mod._resolveFilename = function (request: string, ...rest: unknown[]) {
  return request === 'vscode' ? fake : original.call(this, request, ...rest);
};
