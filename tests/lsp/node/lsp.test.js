// Drives `arbolet lsp` as an editor does, through the protocol library editors use: a copy of
// the example project and a generated code base of many components, opened, edited and queried.
'use strict';

const { test, before, after } = require('node:test');
const assert = require('node:assert/strict');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const { spawn } = require('node:child_process');
const { pathToFileURL } = require('node:url');
const rpc = require('vscode-languageserver-protocol/node');

const arbolet = process.env.ARBOLET;
const source = process.env.ARBOLET_SOURCE;
if (!arbolet || !source) throw new Error('set ARBOLET (the program) and ARBOLET_SOURCE');

const uriOf = (file) => pathToFileURL(file).href;

// A code base of `count` modules in one project, each with procedures, nested blocks and a
// public function the next module calls; module 7 misses an End If.
function generate(folder, count) {
  fs.mkdirSync(folder, { recursive: true });
  const lines = ['Type=Exe'];
  for (let i = 0; i < count; i++) {
    const name = `modGen${i}`;
    lines.push(`Module=${name}; ${name}.bas`);
    const code = [`Attribute VB_Name = "${name}"`, 'Option Explicit', `Public Const GEN_LIMIT_${i} = ${i}`];
    for (let p = 0; p < 20; p++) {
      code.push(`Public Function Gen${i}Work${p}(ByVal n As Long) As Long`);
      code.push('    Dim k As Long');
      code.push('    For k = 1 To n');
      code.push('        If k Mod 2 = 0 Then');
      code.push(`            Gen${i}Work${p} = Gen${i}Work${p} + k`);
      if (!(i === 7 && p === 3)) code.push('        End If');
      code.push('    Next k');
      if (i > 0) code.push(`    Gen${i}Work${p} = Gen${i}Work${p} + Gen${i - 1}Work0(1)`);
      code.push('End Function');
    }
    fs.writeFileSync(path.join(folder, `${name}.bas`), code.join('\r\n') + '\r\n');
  }
  lines.push('Name="Generated"');
  fs.writeFileSync(path.join(folder, 'Generated.vbp'), lines.join('\r\n') + '\r\n');
}

let workspace;
let server;
let connection;
const diagnostics = new Map();
const diagnosticWaiters = [];
const treeChanges = [];

function waitForDiagnostics(uri, predicate = () => true) {
  const current = diagnostics.get(uri);
  if (current && predicate(current)) return Promise.resolve(current);
  return new Promise((resolve) => diagnosticWaiters.push({ uri, predicate, resolve }));
}

async function open(file) {
  const uri = uriOf(file);
  diagnostics.delete(uri);
  await connection.sendNotification('textDocument/didOpen', {
    textDocument: { uri, languageId: 'vb', version: 1, text: fs.readFileSync(file, 'latin1') },
  });
  return uri;
}

before(async () => {
  workspace = fs.mkdtempSync(path.join(os.tmpdir(), 'arbolet-node-'));
  fs.cpSync(path.join(source, 'examples', 'Inventory'), path.join(workspace, 'Inventory'), { recursive: true });
  generate(path.join(workspace, 'Generated'), 120);
  server = spawn(arbolet, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
  connection = rpc.createProtocolConnection(
    new rpc.StreamMessageReader(server.stdout), new rpc.StreamMessageWriter(server.stdin));
  connection.onNotification('textDocument/publishDiagnostics', (params) => {
    diagnostics.set(params.uri, params.diagnostics);
    for (let i = diagnosticWaiters.length - 1; i >= 0; i--) {
      const waiter = diagnosticWaiters[i];
      if (waiter.uri === params.uri && waiter.predicate(params.diagnostics)) {
        diagnosticWaiters.splice(i, 1);
        waiter.resolve(params.diagnostics);
      }
    }
  });
  connection.onNotification('arbolet/projectTreeChanged', (params) => treeChanges.push(params));
  connection.onNotification('window/logMessage', () => {});
  connection.onRequest('client/registerCapability', () => null);
  connection.listen();
  const result = await connection.sendRequest('initialize', {
    processId: process.pid,
    rootUri: uriOf(workspace),
    workspaceFolders: [{ uri: uriOf(workspace), name: 'ws' }],
    capabilities: { workspace: { didChangeWatchedFiles: { dynamicRegistration: true } } },
  });
  assert.equal(result.capabilities.positionEncoding, 'utf-16');
  await connection.sendNotification('initialized', {});
});

after(async () => {
  if (connection) {
    await connection.sendRequest('shutdown');
    const exited = new Promise((resolve) => server.on('exit', (code) => resolve(code)));
    await connection.sendNotification('exit');
    assert.equal(await exited, 0);
    connection.dispose();
  }
  fs.rmSync(workspace, { recursive: true, force: true });
});

test('diagnostics of the example module arrive with rule ids and related openers', { timeout: 20000 }, async () => {
  const uri = await open(path.join(workspace, 'Inventory', 'modLegacy.bas'));
  const found = await waitForDiagnostics(uri);
  // What `arbolet check` reports for the file, at the same lines.
  assert.deepEqual(found.map((d) => [d.range.start.line + 1, d.code]), [
    [9, 'unclosed-block'], [21, 'next-nesting'], [22, 'next-nesting'],
    [27, 'unmatched-end'], [31, 'unclosed-block'], [33, 'unmatched-end']]);
  const unclosed = found.find((d) => d.code === 'unclosed-block');
  assert.equal(unclosed.range.start.line, 8);
  assert.equal(unclosed.source, 'arbolet');
  assert.match(unclosed.message, /probably before line 12/);
  const nesting = found.find((d) => d.code === 'next-nesting');
  assert.equal(nesting.relatedInformation[0].location.range.start.line, 18);
});

test('an edit that closes the block clears its diagnostic', { timeout: 20000 }, async () => {
  const uri = uriOf(path.join(workspace, 'Inventory', 'modLegacy.bas'));
  await connection.sendNotification('textDocument/didChange', {
    textDocument: { uri, version: 2 },
    contentChanges: [{ range: { start: { line: 10, character: 0 }, end: { line: 10, character: 0 } }, text: '    End If\r\n' }],
  });
  const closed = (d) => !d.some((x) => x.code === 'unclosed-block' && x.range.start.line === 8);
  const found = await waitForDiagnostics(uri, closed);
  // The While further down is still open, one line later now.
  assert.deepEqual(found.filter((d) => d.code === 'unclosed-block').map((d) => d.range.start.line), [31]);
});

test('document symbols are the logic-flow tree', { timeout: 20000 }, async () => {
  const uri = await open(path.join(workspace, 'Inventory', 'modStock.bas'));
  const symbols = await connection.sendRequest('textDocument/documentSymbol', { textDocument: { uri } });
  const byName = Object.fromEntries(symbols.map((s) => [s.name, s]));
  assert.equal(byName.MAX_ITEMS.kind, 14);
  assert.equal(byName.StockState.kind, 10);
  assert.ok(byName.StockState.children.length > 0);
  assert.equal(byName.StockLine.kind, 23);
  assert.equal(byName.StateOf.kind, 12);
  assert.equal(byName.WaitForStock.kind, 6);
  assert.ok(byName.StateOf.children.length > 0, 'blocks below the procedure');
  for (const s of symbols) {
    assert.ok(s.range.start.line <= s.selectionRange.start.line);
    assert.ok(s.range.end.line >= s.selectionRange.end.line);
  }
});

test('folding ranges and matching keywords', { timeout: 20000 }, async () => {
  const uri = uriOf(path.join(workspace, 'Inventory', 'modLegacy.bas'));
  const ranges = await connection.sendRequest('textDocument/foldingRange', { textDocument: { uri } });
  // The End If added by the edit above moved CountRows one line down.
  assert.ok(ranges.some((r) => r.startLine === 16 && r.endLine === 22), JSON.stringify(ranges));
  assert.ok(ranges.some((r) => r.kind === 'imports' && r.startLine === 0));
  const highlights = await connection.sendRequest('textDocument/documentHighlight', {
    textDocument: { uri }, position: { line: 16, character: 9 },
  });
  assert.deepEqual(highlights.map((h) => h.range.start.line), [16, 23]);
  const none = await connection.sendRequest('textDocument/documentHighlight', {
    textDocument: { uri }, position: { line: 27, character: 6 },
  });
  assert.deepEqual(none, []);
});

test('workspace symbols cover the generated code base', { timeout: 20000 }, async () => {
  const found = await connection.sendRequest('workspace/symbol', { query: 'gen119work19' });
  assert.equal(found[0].name, 'Gen119Work19');
  assert.equal(found[0].containerName, 'modGen119');
  const all = await connection.sendRequest('workspace/symbol', { query: 'GEN_LIMIT' });
  assert.equal(all.length, 120);
  const component = await connection.sendRequest('workspace/symbol', { query: 'clsWarehouse' });
  assert.equal(component[0].kind, 5);
});

test('definitions go across modules, and the broken module shows its error', { timeout: 20000 }, async () => {
  const file = path.join(workspace, 'Generated', 'modGen8.bas');
  const uri = await open(file);
  const text = fs.readFileSync(file, 'latin1').split('\r\n');
  const line = text.findIndex((l) => l.includes('Gen7Work0(1)'));
  const character = text[line].indexOf('Gen7Work0') + 3;
  const found = await connection.sendRequest('textDocument/definition', { textDocument: { uri }, position: { line, character } });
  assert.equal(found.length, 1);
  assert.equal(found[0].uri, uriOf(path.join(workspace, 'Generated', 'modGen7.bas')));
  assert.equal(found[0].range.start.line, 3);
  const broken = await open(path.join(workspace, 'Generated', 'modGen7.bas'));
  const errors = await waitForDiagnostics(broken);
  assert.equal(errors.length, 1);
  assert.equal(errors[0].code, 'unclosed-block');
});

test('the project tree and a folder command', { timeout: 20000 }, async () => {
  const tree = await connection.sendRequest('arbolet/projectTree', {});
  const names = tree.nodes.map((n) => n.text).sort();
  assert.deepEqual(names, ['Generated', 'Inventory']);
  const inventory = tree.nodes.find((n) => n.text === 'Inventory');
  assert.equal(inventory.kind, 'project');
  const vbp = inventory.uri;
  treeChanges.length = 0;
  assert.equal(await connection.sendRequest('workspace/executeCommand', {
    command: 'arbolet.folders.add', arguments: [vbp, 'Reports'],
  }), null);
  assert.ok(treeChanges.some((c) => c.project === vbp));
  const again = await connection.sendRequest('arbolet/projectTree', { project: vbp });
  assert.ok(again.nodes[0].children.some((n) => n.text === 'Reports' && n.custom));
  await assert.rejects(connection.sendRequest('workspace/executeCommand', {
    command: 'arbolet.folders.remove', arguments: [vbp, 'NoSuchFolder'],
  }), (error) => error.code === -32803 && /is not a custom folder of Inventory/.test(error.message));
});

test('broken framing on the real pipe is logged and the server goes on to a clean exit', { timeout: 20000 }, async () => {
  const child = spawn(arbolet, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
  const frame = (message) => {
    const body = Buffer.from(JSON.stringify(message));
    return Buffer.concat([Buffer.from(`Content-Length: ${body.length}\r\n\r\n`), body]);
  };
  let output = Buffer.alloc(0);
  child.stdout.on('data', (chunk) => { output = Buffer.concat([output, chunk]); });
  const exited = new Promise((resolve) => child.on('exit', (code) => resolve(code)));
  child.stdin.write(frame({ jsonrpc: '2.0', id: 1, method: 'initialize', params: { capabilities: {} } }));
  child.stdin.write('Content-Type: nothing else\r\n\r\n{}');           // no Content-Length
  child.stdin.write('Content-Length: 9999\r\n\r\n{"id":');              // longer than the body
  child.stdin.write(frame({ jsonrpc: '2.0', id: 2, method: 'no/such' }));
  child.stdin.write('Content-Length: 5\r\n\r\nnot json at all');       // shorter, and no JSON
  child.stdin.write(frame({ jsonrpc: '2.0', id: 3, method: 'shutdown' }));
  child.stdin.write(frame({ jsonrpc: '2.0', method: 'exit' }));
  child.stdin.end();
  assert.equal(await exited, 0);
  // Every byte of the output is a framed JSON message.
  const messages = [];
  let rest = output;
  while (rest.length > 0) {
    const text = rest.toString('latin1');
    const match = /^Content-Length: (\d+)\r\n\r\n/.exec(text);
    assert.ok(match, `unframed output: ${text.slice(0, 80)}`);
    const start = match[0].length;
    const length = Number(match[1]);
    messages.push(JSON.parse(rest.subarray(start, start + length).toString('utf8')));
    rest = rest.subarray(start + length);
  }
  const byId = (id) => messages.find((m) => m.id === id && !m.method);
  assert.ok(byId(1).result.capabilities);
  assert.equal(byId(2).error.code, -32601);
  assert.equal(byId(3).result, null);
  assert.ok(messages.some((m) => m.error && m.error.code === -32700), 'a parse error');
  assert.ok(messages.filter((m) => m.method === 'window/logMessage').length >= 2, 'framing errors logged');
});
