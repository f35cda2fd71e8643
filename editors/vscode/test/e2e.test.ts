// The view's provider and commands against a real `arbolet lsp` over a copy of examples/Inventory:
// the same projects, folders and components as `arbolet tree --format json`, modStock's code
// nodes, modLegacy's red nodes, and folder changes that leave the files exactly as
// `arbolet folders` leaves them. Saves the picture of the view under build/screenshots/.
//   ARBOLET=path/to/arbolet (default build/native/apps/arbolet/arbolet of the repository)
import './useFakeVscode';
import { after, before, test } from 'node:test';
import * as assert from 'node:assert/strict';
import { ChildProcess, execFileSync, spawn, spawnSync } from 'node:child_process';
import * as fs from 'node:fs';
import * as os from 'node:os';
import * as path from 'node:path';
import { createMessageConnection, MessageConnection, StreamMessageReader, StreamMessageWriter } from 'vscode-jsonrpc/node';
import * as vscode from './fakeVscode';
import { registerCommands, CommandContext } from '../src/commands';
import { ServerConnection } from '../src/protocol';
import { ProjectTreeProvider } from '../src/treeProvider';
import { CodeElement, TreeElement } from '../src/treeModel';
import { treeServerOver, TreeServer } from '../src/treeServer';
import { screenshot, visibleRows } from './picture';

const repo = path.resolve(__dirname, '../../../..');
const arbolet = path.resolve(repo, process.env.ARBOLET ?? 'build/native/apps/arbolet/arbolet');
const haveArbolet = fs.existsSync(arbolet);
const picture = path.join(repo, 'build/screenshots/vscode_tree.png');
const timeoutMs = 20000;

/** Requests the server answered "method not found" to, reported at the end. */
const lacking = new Set<string>();
let work = '';
let expectedDir = '';
let child: ChildProcess | undefined;
let connection: MessageConnection | undefined;
let server: TreeServer;
let provider: ProjectTreeProvider;
let startError: string | undefined;
const reports: string[] = [];
const stderr: string[] = [];

function withTimeout<T>(what: string, p: Promise<T>): Promise<T> {
  return Promise.race([
    p,
    new Promise<T>((_, reject) => setTimeout(() => reject(new Error(`${what}: no answer in ${timeoutMs / 1000} s`)), timeoutMs).unref()),
  ]);
}

function checked(conn: MessageConnection): ServerConnection {
  return {
    async sendRequest<R>(method: string, params?: unknown): Promise<R> {
      try {
        return await withTimeout(method, conn.sendRequest(method, params) as Promise<R>);
      } catch (error) {
        if ((error as { code?: number }).code === -32601) {
          lacking.add(method);
          throw new Error(`the server lacks ${method}`);
        }
        throw error;
      }
    },
    onNotification: (method, handler) => conn.onNotification(method, handler),
  };
}

const fileUri = (p: string) => vscode.Uri.file(p).toString();
const run = (...args: string[]) => execFileSync(arbolet, args, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });

before(async () => {
  if (!haveArbolet) return;
  work = fs.mkdtempSync(path.join(os.tmpdir(), 'arbolet-vscode-e2e-'));
  fs.cpSync(path.join(repo, 'examples/Inventory'), path.join(work, 'Inventory'), { recursive: true });
  expectedDir = path.join(work, 'expected');
  fs.cpSync(path.join(repo, 'examples/Inventory'), expectedDir, { recursive: true });
  const help = spawnSync(arbolet, ['lsp', '--help'], { encoding: 'utf8' });
  if (help.status !== 0) {
    startError = `${arbolet} has no lsp command: ${(help.stderr || help.stdout || String(help.error)).trim()}`;
    return;
  }
  child = spawn(arbolet, ['lsp'], { cwd: work, stdio: ['pipe', 'pipe', 'pipe'] });
  child.stderr!.on('data', (d) => stderr.push(String(d)));
  const exited = new Promise<string>((resolve) => child!.on('close', (code, signal) => resolve(`arbolet lsp exited (${code ?? signal})`)));
  const spawnFailed = new Promise<string>((resolve) => child!.on('error', (e) => resolve(`arbolet lsp did not start: ${e.message}`)));
  child.stdin!.on('error', () => undefined);
  connection = createMessageConnection(new StreamMessageReader(child.stdout!), new StreamMessageWriter(child.stdin!));
  connection.onError(() => undefined);
  // The server may register file watchers or ask for settings; a client without them says null.
  connection.onRequest(() => null);
  connection.listen();
  const root = fileUri(path.join(work, 'Inventory'));
  const init = connection
    .sendRequest('initialize', {
      processId: process.pid,
      rootUri: root,
      workspaceFolders: [{ uri: root, name: 'Inventory' }],
      capabilities: { textDocument: { documentSymbol: { hierarchicalDocumentSymbolSupport: true } }, workspace: { configuration: false } },
      initializationOptions: { codePage: 1252, blocks: true },
    })
    .then(() => undefined);
  const outcome = await Promise.race([
    withTimeout('initialize', init).catch((e: Error) => `initialize failed: ${e.message}`),
    exited,
    spawnFailed,
  ]);
  if (typeof outcome === 'string') {
    startError = `${outcome}\n${stderr.join('').slice(-1000)}`;
    return;
  }
  await connection.sendNotification('initialized', {});
  const opened = new Set<string>();
  const conn = connection;
  server = treeServerOver(checked(conn), async (uri) => {
    if (opened.has(uri)) return;
    opened.add(uri);
    // What VS Code sends: the file's text as windows-1252 decodes it.
    const text = new TextDecoder('windows-1252').decode(fs.readFileSync(vscode.Uri.parse(uri).fsPath));
    await conn.sendNotification('textDocument/didOpen', { textDocument: { uri, languageId: 'vb6', version: 1, text } });
  });
  provider = new ProjectTreeProvider(server, vscode.Uri.file(path.join(__dirname, '../../media/icons')) as any, (m) => reports.push(m));
});

after(async () => {
  if (lacking.size) console.log(`# arbolet lsp lacks: ${[...lacking].join(', ')}`);
  if (connection) {
    const conn = connection;
    if (!startError) {
      await withTimeout('shutdown', Promise.resolve().then(() => conn.sendRequest('shutdown'))).catch(() => undefined);
      await Promise.resolve().then(() => conn.sendNotification('exit')).catch(() => undefined);
    }
    conn.dispose();
  }
  if (child && child.exitCode === null) {
    await new Promise((r) => setTimeout(r, 500).unref());
    if (child.exitCode === null) child.kill();
  }
  if (work) fs.rmSync(work, { recursive: true, force: true });
});

function requireServer(t: { skip: (m: string) => void }): boolean {
  if (!haveArbolet) {
    t.skip(`no arbolet at ${arbolet} (set ARBOLET or build the arbolet target)`);
    return false;
  }
  assert.equal(startError, undefined, startError);
  return true;
}

interface Shape {
  text: string;
  bold: boolean;
  children: Shape[];
}

async function shapeOf(elements: TreeElement[]): Promise<Shape[]> {
  const out: Shape[] = [];
  for (const e of elements) {
    if (e.type === 'code') continue;
    const children = e.type === 'component' ? [] : await shapeOf(await provider.getChildren(e));
    out.push({ text: e.node.text, bold: e.node.bold, children });
  }
  return out;
}

function cliShape(nodes: { text: string; bold: boolean; children?: unknown[] }[]): Shape[] {
  // Below each component the CLI shows a "Code List" placeholder, which the view replaces by code.
  return nodes
    .filter((n) => !(n.text === 'Code List' && (n.children ?? []).length === 0))
    .map((n) => ({ text: n.text, bold: n.bold, children: cliShape((n.children ?? []) as never) }));
}

async function find(...labels: string[]): Promise<TreeElement> {
  let level = await provider.getChildren();
  let found: TreeElement | undefined;
  for (const label of labels) {
    found = level.find((e) => (e.type === 'code' ? e.symbol.name : e.node.text) === label);
    assert.ok(found, `no node "${label}" among ${level.map((e) => (e.type === 'code' ? e.symbol.name : e.node.text)).join(', ')}`);
    level = await provider.getChildren(found);
  }
  return found!;
}

function filesOf(dir: string): Map<string, Buffer> {
  return new Map(fs.readdirSync(dir).sort().map((f) => [f, fs.readFileSync(path.join(dir, f))]));
}

function assertSameFiles(step: string) {
  const got = filesOf(path.join(work, 'Inventory'));
  const want = filesOf(expectedDir);
  assert.deepEqual([...got.keys()], [...want.keys()], step);
  for (const [name, bytes] of want) {
    assert.ok(got.get(name)!.equals(bytes), `${step}: ${name} differs from what arbolet folders wrote:\n${got.get(name)!.toString('latin1')}\n---- expected\n${bytes.toString('latin1')}`);
  }
}

test('the view shows the projects, folders and components of arbolet tree --format json', async (t) => {
  if (!requireServer(t)) return;
  const vbp = path.join(work, 'Inventory', 'Inventory.vbp');
  const cli = JSON.parse(run('tree', '--format', 'json', vbp));
  const roots = await provider.getChildren();
  assert.deepEqual(reports, []);
  assert.deepEqual(await shapeOf(roots), cliShape(cli.nodes));
  const project = roots[0];
  assert.equal(project.type === 'project' && project.node.uri && vscode.Uri.parse(project.node.uri).fsPath, vbp);
  const stock = await find('Inventory', 'Stock Logic', 'modStock');
  assert.equal(stock.type === 'component' && vscode.Uri.parse(stock.node.uri!).fsPath, path.join(work, 'Inventory', 'modStock.bas'));
});

test('modStock\'s code nodes: its declarations and procedures, and the blocks inside them', async (t) => {
  if (!requireServer(t)) return;
  const stock = await find('Inventory', 'Stock Logic', 'modStock');
  const code = (await provider.getChildren(stock)) as CodeElement[];
  const names = code.map((c) => c.symbol.name);
  for (const name of ['StateOf', 'ParseLine', 'WaitForStock', 'IsAvailable']) assert.ok(names.includes(name), `${name} in ${names.join(', ')}`);
  assert.ok(names.indexOf('StateOf') < names.indexOf('IsAvailable'));
  assert.ok(code.every((c) => !c.hasError), 'modStock has no block error');
  const stateOf = code.find((c) => c.symbol.name === 'StateOf')!;
  const lines = fs.readFileSync(path.join(work, 'Inventory', 'modStock.bas'), 'latin1').split('\r\n');
  assert.equal(stateOf.symbol.range.start.line, lines.findIndex((l) => l.includes('Function StateOf(')));
  assert.match(stateOf.children.map((c) => c.symbol.name).join('|'), /^Select Case quantity/);
  const wait = code.find((c) => c.symbol.name === 'WaitForStock')!;
  assert.deepEqual(wait.children.map((c) => c.symbol.name.split(/\s+/)[0]).slice(0, 2), ['Do', '#If']);
  const item = (await provider.getTreeItem(stock)) as unknown as vscode.TreeItem;
  assert.equal(item.collapsibleState, vscode.TreeItemCollapsibleState.Collapsed);
});

test('modLegacy opens by itself on its red error nodes, each naming its rule', async (t) => {
  if (!requireServer(t)) return;
  const legacy = await find('Inventory', 'Data Access', 'modLegacy');
  const item = (await provider.getTreeItem(legacy)) as unknown as vscode.TreeItem;
  assert.equal(item.collapsibleState, vscode.TreeItemCollapsibleState.Expanded);
  const errors: CodeElement[] = [];
  const walk = (list: CodeElement[]) => list.forEach((c) => (c.symbol.kind === 21 ? errors.push(c) : walk(c.children)));
  walk((await provider.getChildren(legacy)) as CodeElement[]);
  assert.ok(errors.length >= 3, errors.map((e) => e.symbol.name).join('\n'));
  for (const e of errors) assert.match(e.symbol.detail ?? '', /^error: [a-z-]+$/);
  const check = JSON.parse(
    (() => {
      try {
        return run('check', '--format', 'json', path.join(work, 'Inventory', 'modLegacy.bas'));
      } catch (e) {
        return (e as { stdout: string }).stdout;
      }
    })(),
  );
  assert.deepEqual(
    errors.map((e) => e.symbol.range.start.line + 1).sort((a, b) => a - b),
    check.diagnostics.map((d: { line: number }) => d.line).sort((a: number, b: number) => a - b),
    'one red node on each line arbolet check reports',
  );
  const red = (await provider.getTreeItem(errors[0])) as unknown as vscode.TreeItem;
  assert.deepEqual(red.iconPath, new vscode.ThemeIcon('error', new vscode.ThemeColor('errorForeground')));
});

test('the picture of the view', async (t) => {
  if (!requireServer(t)) return;
  const rows = await visibleRows(provider);
  assert.ok(rows.some((r) => r.error));
  const why = screenshot(rows, picture);
  if (why) {
    t.skip(why);
    return;
  }
  assert.ok(fs.statSync(picture).size > 5000);
  console.log(`# picture: ${path.relative(repo, picture)}`);
});

test('display settings in the shape the extension sends them change the code nodes', async (t) => {
  if (!requireServer(t)) return;
  const { serverSettings } = await import('../src/settings');
  const send = async (values: Record<string, unknown>) => {
    const settings = serverSettings((k) => values[k], 'windows1252');
    await connection!.sendNotification('workspace/didChangeConfiguration', { settings: { arbolet: settings } });
    provider.refreshCode();
  };
  const names = async () => ((await provider.getChildren(await find('Inventory', 'Stock Logic', 'modStock'))) as CodeElement[]).map((c) => c.symbol.name);
  assert.ok((await names()).includes('MAX_ITEMS'));
  await send({ 'display.hideConstants': true });
  assert.ok(!(await names()).includes('MAX_ITEMS'), (await names()).join(', '));
  await send({});
  assert.ok((await names()).includes('MAX_ITEMS'));
});

test('folder commands from the view change the files exactly as arbolet folders does', async (t) => {
  if (!requireServer(t)) return;
  vscode.resetRecorded();
  const view = { selection: [] as TreeElement[], visible: true, reveal: async () => {} };
  registerCommands({ server, provider, view } as unknown as CommandContext);
  const expectedVbp = path.join(expectedDir, 'Inventory.vbp');
  const cmd = (name: string, ...args: unknown[]) => vscode.commands.executeCommand(name, ...args);

  await cmd('arbolet.projects.moveToFolder', await find('Inventory', 'Stock Logic', 'modStock'));
  assert.deepEqual(vscode.recorded.errors, []);
  assert.equal(vscode.recorded.quickPicks.length, 1, 'a quick pick was offered');
  // The first answer was missing: nothing is sent and nothing changes.
  assertSameFiles('a cancelled move');

  vscode.recorded.pickAnswers.push('Archive');
  await cmd('arbolet.projects.moveToFolder', await find('Inventory', 'Stock Logic', 'modStock'));
  assert.deepEqual(vscode.recorded.errors, []);
  run('folders', expectedVbp, 'move', 'modStock', 'Archive');
  assertSameFiles('move modStock to Archive');
  assert.equal((await find('Inventory', 'Archive', 'modStock')).type, 'component');

  vscode.recorded.inputAnswers.push('Reports');
  await cmd('arbolet.projects.newFolder', await find('Inventory'));
  run('folders', expectedVbp, 'add', 'Reports');
  assertSameFiles('add the folder Reports');

  vscode.recorded.inputAnswers.push('Old Code');
  await cmd('arbolet.projects.renameFolder', await find('Inventory', 'Archive'));
  run('folders', expectedVbp, 'rename', 'Archive', 'Old Code');
  assertSameFiles('rename Archive to Old Code');

  // A drag of modLegacy back into its fixed group.
  const data = new vscode.DataTransfer();
  provider.handleDrag([await find('Inventory', 'Data Access', 'modLegacy')], data as any);
  await provider.handleDrop(await find('Inventory', 'Old Code'), data as any);
  run('folders', expectedVbp, 'move', 'modLegacy', 'Old Code');
  assertSameFiles('drag modLegacy onto Old Code');

  await cmd('arbolet.projects.removeFolder', await find('Inventory', 'Stock Logic'));
  run('folders', expectedVbp, 'remove', 'Stock Logic');
  assertSameFiles('remove Stock Logic');
  assert.deepEqual(vscode.recorded.errors, []);
  assert.deepEqual(reports, []);

  // A refusal: an invalid name is refused with the CLI's message, and no file changes.
  vscode.recorded.inputAnswers.push('bad;name');
  await cmd('arbolet.projects.newFolder', await find('Inventory'));
  let cliMessage = '';
  try {
    run('folders', expectedVbp, 'add', 'bad;name');
  } catch (e) {
    cliMessage = String((e as { stderr: string }).stderr).trim();
  }
  assert.equal(vscode.recorded.errors.length, 1);
  assert.ok(cliMessage.includes(vscode.recorded.errors[0]), `"${vscode.recorded.errors[0]}" is not the CLI's "${cliMessage}"`);
  assertSameFiles('a refused folder name');
});

test('Rename Component changes the files exactly as arbolet rename does, and the view follows', async (t) => {
  if (!requireServer(t)) return;
  vscode.resetRecorded();
  const view = { selection: [] as TreeElement[], visible: true, reveal: async () => {} };
  registerCommands({ server, provider, view } as unknown as CommandContext);
  vscode.recorded.inputAnswers.push('clsStore');
  await vscode.commands.executeCommand('arbolet.projects.renameComponent', await find('Inventory', 'Class Modules', 'clsWarehouse'));
  assert.deepEqual(vscode.recorded.errors, []);
  run('rename', path.join(expectedDir, 'Inventory.vbp'), 'clsWarehouse', 'clsStore');
  assertSameFiles('rename clsWarehouse to clsStore');
  assert.equal((await find('Inventory', 'Class Modules', 'clsStore')).type, 'component');
  // A name in use is refused with the CLI's words.
  vscode.recorded.inputAnswers.push('clsItem');
  await vscode.commands.executeCommand('arbolet.projects.renameComponent', await find('Inventory', 'Class Modules', 'clsStore'));
  let cliMessage = '';
  try {
    run('rename', path.join(expectedDir, 'Inventory.vbp'), 'clsStore', 'clsItem');
  } catch (e) {
    cliMessage = String((e as { stderr: string }).stderr).trim();
  }
  assert.equal(vscode.recorded.errors.length, 1);
  assert.ok(cliMessage !== '' && cliMessage.includes(vscode.recorded.errors[0]), `"${vscode.recorded.errors[0]}" is not the CLI's "${cliMessage}"`);
  assertSameFiles('a refused rename');
});

test('a change to the .vbp made elsewhere reaches the view through arbolet/projectTreeChanged', async (t) => {
  if (!requireServer(t)) return;
  const vbp = path.join(work, 'Inventory', 'Inventory.vbp');
  // The provider is the one listener of the notification (a connection keeps one per method), so
  // the test watches the view itself: it must change without being asked to refresh.
  const fired: unknown[] = [];
  provider.onDidChangeTreeData((e) => fired.push(e));
  // Another program moves clsItem; VS Code's file watcher tells the server, as the client is set up to.
  run('folders', vbp, 'move', 'clsItem', 'Reports');
  await connection!.sendNotification('workspace/didChangeWatchedFiles', { changes: [{ uri: fileUri(vbp), type: 2 }] });
  const inReports = async () => {
    const reports = (await provider.getChildren()).flatMap((p) => (p.type === 'project' ? p.children : []));
    const folder = reports.find((f) => f.type === 'folder' && f.node.text === 'Reports');
    return folder !== undefined && (await provider.getChildren(folder)).some((c) => c.type === 'component' && c.node.text === 'clsItem');
  };
  const deadline = Date.now() + timeoutMs;
  while (!(await inReports())) {
    assert.ok(Date.now() < deadline, 'the view did not show clsItem in Reports after the server was told of the change');
    await new Promise((r) => setTimeout(r, 100));
  }
  assert.ok(fired.length >= 1, 'the view was told to redraw');
});
