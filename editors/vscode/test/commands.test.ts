// The view's commands as the menus call them: what they ask the user, what they send the server,
// and how a refusal reaches the user.
import './useFakeVscode';
import { test, beforeEach } from 'node:test';
import * as assert from 'node:assert/strict';
import * as fs from 'node:fs';
import * as path from 'node:path';
import * as vscode from './fakeVscode';
import { CommandContext, fixedGroupPick, followCursor, registerCommands } from '../src/commands';
import { ProjectTreeProvider } from '../src/treeProvider';
import { serverCommandNames } from '../src/protocol';
import { TreeElement } from '../src/treeModel';
import { FakeServer, legacySymbols, modLegacy, modStock, sampleTree, vbp } from './fakeServer';

interface FakeView {
  selection: TreeElement[];
  visible: boolean;
  revealed: { element: TreeElement; options: unknown }[];
  reveal(element: TreeElement, options: unknown): Promise<void>;
}

function setup() {
  vscode.resetRecorded();
  const server = new FakeServer();
  server.tree = sampleTree();
  server.symbols.set(modLegacy, legacySymbols);
  const provider = new ProjectTreeProvider(server, vscode.Uri.file('/ext/media/icons') as any, (m) => void vscode.window.showErrorMessage(m));
  const view: FakeView = {
    selection: [],
    visible: true,
    revealed: [],
    async reveal(element, options) {
      this.revealed.push({ element, options });
    },
  };
  const ctx = { server, provider, view } as unknown as CommandContext;
  registerCommands(ctx);
  return { server, provider, view, ctx };
}

async function node(provider: ProjectTreeProvider, ...labels: string[]): Promise<TreeElement> {
  let level = await provider.getChildren();
  let found: TreeElement | undefined;
  for (const label of labels) {
    for (const e of level) if (((await provider.getTreeItem(e)) as any).label === label) found = e;
    assert.ok(found, label);
    level = await provider.getChildren(found);
  }
  return found!;
}

const run = (name: string, ...args: unknown[]) => vscode.commands.executeCommand(name, ...args);

beforeEach(() => vscode.resetRecorded());

test('every command the manifest contributes is registered, and nothing else', () => {
  setup();
  const manifest = JSON.parse(fs.readFileSync(path.join(__dirname, '../../package.json'), 'utf8'));
  const contributed = manifest.contributes.commands.map((c: { command: string }) => c.command).sort();
  assert.deepEqual([...vscode.recorded.commands.keys()].sort(), contributed);
  // The client registers the server's commands under their own names: the same name twice
  // stops the extension from activating.
  assert.deepEqual(contributed.filter((c: string) => (serverCommandNames as readonly string[]).includes(c)), []);
  // Each menu entry names a contributed command.
  for (const [menu, entries] of Object.entries(manifest.contributes.menus) as [string, { command: string }[]][]) {
    for (const e of entries) assert.ok(contributed.includes(e.command), `${menu}: ${e.command}`);
  }
});

test('folders are made, renamed and removed through the server with the names the user typed', async () => {
  const { server, provider } = setup();
  const inventory = await node(provider, 'Inventory');
  vscode.recorded.inputAnswers.push('Reports');
  await run('arbolet.projects.newFolder', inventory);
  vscode.recorded.inputAnswers.push('Old Code');
  await run('arbolet.projects.renameFolder', await node(provider, 'Inventory', 'Archive'));
  await run('arbolet.projects.removeFolder', await node(provider, 'Inventory', 'Data Access'));
  // Fixed groups cannot be removed; renaming one is the server's business.
  await run('arbolet.projects.removeFolder', await node(provider, 'Inventory', 'Forms'));
  vscode.recorded.inputAnswers.push('Screens');
  await run('arbolet.projects.renameFolder', await node(provider, 'Inventory', 'Forms'));
  assert.deepEqual(server.commands, [
    { command: 'arbolet.folders.add', arguments: [vbp, 'Reports'] },
    { command: 'arbolet.folders.rename', arguments: [vbp, 'Archive', 'Old Code'] },
    { command: 'arbolet.folders.remove', arguments: [vbp, 'Data Access'] },
    { command: 'arbolet.folders.rename', arguments: [vbp, 'Forms', 'Screens'] },
  ]);
  assert.equal(vscode.recorded.inputBoxes[1].value, 'Archive');
  assert.deepEqual(vscode.recorded.errors, []);
});

test('a cancelled or unchanged dialog sends nothing', async () => {
  const { server, provider } = setup();
  vscode.recorded.inputAnswers.push(undefined, 'Archive', 'modStock');
  await run('arbolet.projects.newFolder', await node(provider, 'Inventory'));
  await run('arbolet.projects.renameFolder', await node(provider, 'Inventory', 'Archive'));
  await run('arbolet.projects.renameComponent', await node(provider, 'Inventory', 'Stock Logic', 'modStock'));
  vscode.recorded.pickAnswers.push(undefined);
  await run('arbolet.projects.moveToFolder', await node(provider, 'Inventory', 'Stock Logic', 'modStock'));
  assert.deepEqual(server.commands, []);
});

test('Move to Folder offers the other custom folders and the fixed group, and moves to the one picked', async () => {
  const { server, provider } = setup();
  const stock = await node(provider, 'Inventory', 'Stock Logic', 'modStock');
  vscode.recorded.pickAnswers.push('Archive', fixedGroupPick);
  await run('arbolet.projects.moveToFolder', stock);
  assert.deepEqual(vscode.recorded.quickPicks[0].items, ['Data Access', 'Archive', fixedGroupPick]);
  await run('arbolet.projects.moveToFolder', stock);
  assert.deepEqual(server.commands, [
    { command: 'arbolet.folders.move', arguments: [vbp, 'modStock', 'Archive'] },
    { command: 'arbolet.folders.move', arguments: [vbp, 'modStock', ''] },
  ]);
  // A form in its fixed group is not offered its own group back.
  vscode.recorded.pickAnswers.push(undefined);
  await run('arbolet.projects.moveToFolder', await node(provider, 'Inventory', 'Forms', 'frmMain'));
  assert.deepEqual(vscode.recorded.quickPicks[2].items, ['Stock Logic', 'Data Access', 'Archive']);
});

test('a refusal shows the server\'s own message and leaves the tree as it was', async () => {
  const { server, provider } = setup();
  await provider.getChildren();
  const requests = server.treeRequests;
  server.refusals.set('arbolet.rename', 'You already have an object with this name.');
  vscode.recorded.inputAnswers.push('modLegacy');
  await run('arbolet.projects.renameComponent', await node(provider, 'Inventory', 'Stock Logic', 'modStock'));
  assert.deepEqual(server.commands, [{ command: 'arbolet.rename', arguments: [vbp, 'modStock', 'modLegacy'] }]);
  assert.deepEqual(vscode.recorded.errors, ['You already have an object with this name.']);
  assert.equal(server.treeRequests, requests);
  // A success reads the tree again at once.
  server.refusals.clear();
  vscode.recorded.inputAnswers.push('modStore');
  await run('arbolet.projects.renameComponent', await node(provider, 'Inventory', 'Stock Logic', 'modStock'));
  assert.equal(server.treeRequests, requests + 1);
});

test('from the command palette the commands act on the selected node', async () => {
  const { server, provider, view } = setup();
  view.selection = [await node(provider, 'Inventory', 'Archive')];
  await run('arbolet.projects.removeFolder');
  view.selection = [];
  await run('arbolet.projects.removeFolder');
  assert.deepEqual(server.commands, [{ command: 'arbolet.folders.remove', arguments: [vbp, 'Archive'] }]);
});

test('Reveal in VB6 Projects selects the component of the file; a file of no project says so', async () => {
  const { provider, view } = setup();
  const revealed = await run('arbolet.projects.reveal', vscode.Uri.parse(modStock));
  assert.equal(revealed, await node(provider, 'Inventory', 'Stock Logic', 'modStock'));
  assert.deepEqual(view.revealed.map((r) => r.options), [{ select: true, focus: true, expand: false }]);
  await run('arbolet.projects.reveal', vscode.Uri.parse('file:///w/other.bas'));
  assert.equal(vscode.recorded.infos.length, 1);
  assert.match(vscode.recorded.infos[0], /other\.bas is not a component/);
});

test('following the cursor selects the innermost node of the line, only while the view is shown', async () => {
  const { provider, view, ctx } = setup();
  const e = await followCursor(ctx, vscode.Uri.parse(modLegacy) as any, 7);
  assert.equal(((await provider.getTreeItem(e!)) as any).label, 'ERROR - NO end if');
  assert.equal(view.revealed.length, 1);
  view.visible = false;
  assert.equal(await followCursor(ctx, vscode.Uri.parse(modLegacy) as any, 18), undefined);
  assert.equal(view.revealed.length, 1);
});

test('Go to Line opens the file with the cursor on the line', async () => {
  setup();
  await run('arbolet.projects.revealLine', vscode.Uri.parse(modStock), 16, 4);
  const shown = vscode.recorded.shownDocuments[0];
  assert.equal(shown.uri.toString(), modStock);
  assert.deepEqual(shown.selection, new vscode.Range(new vscode.Position(16, 4), new vscode.Position(16, 4)));
});
