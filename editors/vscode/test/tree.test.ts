// The VB6 Projects view over a fake server: what each node shows, which nodes open by themselves,
// where clicks go, how it follows the server's changes, and dragging components onto folders.
import './useFakeVscode';
import { test } from 'node:test';
import * as assert from 'node:assert/strict';
import * as vscode from './fakeVscode';
import { ProjectTreeProvider, dropPlace } from '../src/treeProvider';
import { CodeElement, ComponentElement, TreeElement, sameFileUri } from '../src/treeModel';
import { FakeServer, frmMain, legacySymbols, modLegacy, modStock, modTools, sampleTree, stockSymbols, sym, toolsVbp, vbp } from './fakeServer';

function setup(tree: unknown = sampleTree()) {
  const server = new FakeServer();
  server.tree = tree;
  server.symbols.set(modLegacy, legacySymbols);
  server.symbols.set(modStock, stockSymbols);
  const reports: string[] = [];
  const provider = new ProjectTreeProvider(server, vscode.Uri.file('/ext/media/icons') as any, (m) => reports.push(m));
  return { server, provider, reports };
}

async function item(provider: ProjectTreeProvider, e: TreeElement): Promise<vscode.TreeItem> {
  return (await provider.getTreeItem(e)) as unknown as vscode.TreeItem;
}

async function find(provider: ProjectTreeProvider, ...labels: string[]): Promise<TreeElement> {
  let level = await provider.getChildren();
  let found: TreeElement | undefined;
  for (const label of labels) {
    const items = await Promise.all(level.map(async (e) => [e, (await item(provider, e)).label] as const));
    found = items.find(([, l]) => l === label)?.[0];
    assert.ok(found, `no node "${label}" among ${items.map(([, l]) => l).join(', ')}`);
    level = await provider.getChildren(found);
  }
  return found!;
}

const iconFile = (i: vscode.TreeItem) => (i.iconPath as vscode.Uri).path.split('/').pop();

test('projects, folders and components show their names, pictures and menus', async () => {
  const { provider } = setup();
  const projects = await provider.getChildren();
  assert.deepEqual(await Promise.all(projects.map(async (p) => (await item(provider, p)).label)), ['Inventory', 'Tools']);
  const inventory = await item(provider, projects[0]);
  assert.equal(inventory.description, 'start-up');
  assert.deepEqual(inventory.accessibilityInformation, { label: 'Inventory, start-up' });
  assert.equal(iconFile(inventory), 'startup_project@2x.png');
  assert.equal(inventory.contextValue, 'project');
  const tools = await item(provider, projects[1]);
  assert.equal(tools.description, undefined);
  assert.equal(iconFile(tools), 'project@2x.png');

  const forms = await item(provider, await find(provider, 'Inventory', 'Forms'));
  assert.equal(forms.contextValue, 'folder');
  assert.equal(iconFile(forms), 'group_open@2x.png');
  const archive = await item(provider, await find(provider, 'Inventory', 'Archive'));
  assert.equal(archive.contextValue, 'customFolder');
  assert.equal(iconFile(archive), 'custom_folder@2x.png');
  // An empty folder has nothing to open.
  assert.equal(archive.collapsibleState, vscode.TreeItemCollapsibleState.None);

  const main = await item(provider, await find(provider, 'Inventory', 'Forms', 'frmMain'));
  assert.equal(main.contextValue, 'component');
  assert.equal(iconFile(main), 'form@2x.png');
  assert.equal(main.command?.command, 'vscode.open');
  assert.equal(String(main.command?.arguments?.[0]), frmMain);
});

test('every node has an id of its own, even when the server repeats a key', async () => {
  const tree = sampleTree();
  tree.nodes[0].children[1].children.push({ ...tree.nodes[0].children[1].children[0] });
  const { provider } = setup(tree);
  const ids: string[] = [];
  const walk = async (list: TreeElement[]) => {
    for (const e of list) {
      ids.push((await item(provider, e)).id!);
      await walk(await provider.getChildren(e));
    }
  };
  await walk(await provider.getChildren());
  assert.equal(new Set(ids).size, ids.length, ids.join('\n'));
  assert.ok(ids.length >= 12);
});

test('a fixed group switches between the open and closed folder as it is expanded and collapsed', async () => {
  const { provider } = setup();
  const forms = await find(provider, 'Inventory', 'Forms');
  const fired: unknown[] = [];
  provider.onDidChangeTreeData((e) => fired.push(e));
  provider.setExpanded(forms, false);
  const closed = await item(provider, forms);
  assert.equal(iconFile(closed), 'group_closed@2x.png');
  assert.equal(closed.collapsibleState, vscode.TreeItemCollapsibleState.Collapsed);
  provider.setExpanded(forms, true);
  assert.equal(iconFile(await item(provider, forms)), 'group_open@2x.png');
  assert.deepEqual(fired, [forms, forms]);
});

test('a component with block errors opens by itself down to its red nodes; a clean one stays closed', async () => {
  const { provider } = setup();
  const legacy = await find(provider, 'Inventory', 'Data Access', 'modLegacy');
  assert.equal((await item(provider, legacy)).collapsibleState, vscode.TreeItemCollapsibleState.Expanded);
  const openStore = await item(provider, await find(provider, 'Inventory', 'Data Access', 'modLegacy', 'OpenStore'));
  assert.equal(openStore.collapsibleState, vscode.TreeItemCollapsibleState.Expanded);
  const countRows = await item(provider, await find(provider, 'Inventory', 'Data Access', 'modLegacy', 'CountRows'));
  assert.equal(countRows.collapsibleState, vscode.TreeItemCollapsibleState.Collapsed);
  assert.deepEqual(countRows.iconPath, new vscode.ThemeIcon('symbol-function'));

  const error = await item(provider, await find(provider, 'Inventory', 'Data Access', 'modLegacy', 'OpenStore', 'If Len(path) = 0 Then', 'ERROR - NO end if'));
  assert.deepEqual(error.iconPath, new vscode.ThemeIcon('error', new vscode.ThemeColor('errorForeground')));
  assert.equal(error.contextValue, 'codeError');
  assert.equal(error.description, 'error: unclosed-block');
  assert.equal(error.resourceUri?.scheme, 'arbolet-error');
  assert.deepEqual(error.command?.arguments?.slice(1), [7, 0]);

  const stock = await find(provider, 'Inventory', 'Stock Logic', 'modStock');
  assert.equal((await item(provider, stock)).collapsibleState, vscode.TreeItemCollapsibleState.Collapsed);
  const main = await find(provider, 'Inventory', 'Forms', 'frmMain');
  assert.equal((await item(provider, main)).collapsibleState, vscode.TreeItemCollapsibleState.None);
});

test('a code node goes to its line in its own file', async () => {
  const { provider } = setup();
  const stateOf = await item(provider, await find(provider, 'Inventory', 'Stock Logic', 'modStock', 'StateOf'));
  assert.equal(stateOf.command?.command, 'arbolet.projects.revealLine');
  assert.equal(String(stateOf.command?.arguments?.[0]), modStock);
  assert.deepEqual(stateOf.command?.arguments?.slice(1), [16, 0]);
  assert.match(String(stateOf.tooltip), /Line 17/);
});

test('the node under a line is the innermost block holding it, else the component', async () => {
  const { provider } = setup();
  const label = async (e: TreeElement | undefined) => e && (await item(provider, e)).label;
  assert.equal(await label(await provider.elementAtLine(modLegacy, 18)), 'For j = 1 To 10');
  assert.equal(await label(await provider.elementAtLine(modLegacy, 16)), 'For i = 1 To 10');
  assert.equal(await label(await provider.elementAtLine(modLegacy, 13)), 'modLegacy');
  assert.equal(await label(await provider.elementAtLine(modLegacy.replace('modLegacy', 'MODLEGACY'), 18)), undefined);
  assert.equal(await provider.elementAtLine('file:///elsewhere/x.bas', 1), undefined);
  // getParent leads back to the root, which VS Code needs to reveal a node.
  let e: TreeElement | undefined = await provider.elementAtLine(modLegacy, 18);
  const chain: string[] = [];
  while (e) {
    chain.push(String(await label(e)));
    e = provider.getParent(e);
  }
  assert.deepEqual(chain, ['For j = 1 To 10', 'For i = 1 To 10', 'CountRows', 'modLegacy', 'Data Access', 'Inventory']);
});

test('Windows file URIs match whatever case and escaping the drive letter has', () => {
  assert.ok(sameFileUri('file:///c%3A/VB/Mod1.bas', 'file:///C:/VB/mod1.BAS'));
  assert.ok(!sameFileUri('file:///home/a/Mod1.bas', 'file:///home/a/mod1.bas'));
  assert.ok(!sameFileUri('file:///c:/a.bas', 'file:///c:/b.bas'));
  assert.ok(sameFileUri('file:///bad%zz', 'file:///bad%zz'));
});

test('a malformed answer from the server leaves an empty view and a message naming what was wrong', async () => {
  for (const [tree, expected] of [
    [null, /not an object/],
    [{ nodes: 'x' }, /no "nodes" list/],
    [{ nodes: [{ key: 'k', text: 't', kind: 'widget', children: [] }] }, /nodes\[0\] has an unknown kind "widget"/],
    [{ nodes: [{ key: 'k', text: 't', kind: 'project', children: [{ text: 'x', kind: 'folder' }] }] }, /nodes\[0\]\.children\[0\] lacks its key/],
  ] as const) {
    const { provider, reports } = setup(tree);
    assert.deepEqual(await provider.getChildren(), []);
    assert.equal(reports.length, 1);
    assert.match(reports[0], expected);
  }
});

test('junk among the symbols is left out, and a failed request leaves the component without children', async () => {
  const { provider, server, reports } = setup();
  server.symbols.set(modStock, [null, 5, { name: 'x' }, sym('Good', 12, 1, 2, [{ name: 'bad', kind: 'k' }]), { name: 'y', kind: 6, range: { start: { line: 'a' } } }]);
  const stock = await find(provider, 'Inventory', 'Stock Logic', 'modStock');
  const code = (await provider.getChildren(stock)) as CodeElement[];
  assert.deepEqual(code.map((c) => c.symbol.name), ['Good']);
  assert.deepEqual(code[0].children, []);

  server.symbols.set(modTools, new Error('file not found'));
  const tools = await find(provider, 'Tools', 'modTools');
  assert.deepEqual(await provider.getChildren(tools), []);
  assert.equal((await item(provider, tools)).collapsibleState, vscode.TreeItemCollapsibleState.None);
  assert.deepEqual(reports, ['Arbolet could not read the code of modTools: file not found']);
});

test('a change the server announces reads the tree again; an edit reads only its component again', async () => {
  const { provider, server } = setup();
  await provider.getChildren();
  const stock = await find(provider, 'Inventory', 'Stock Logic', 'modStock');
  await provider.getChildren(stock);
  const before = server.symbolRequests.filter((u) => u === modStock).length;
  provider.refreshDocument(modStock);
  await provider.getChildren(stock);
  assert.equal(server.symbolRequests.filter((u) => u === modStock).length, before + 1);

  const archiveBefore = (await item(provider, await find(provider, 'Inventory', 'Archive'))).id;
  const tree = sampleTree();
  tree.nodes[0].children[3].children.push(tree.nodes[0].children[1].children.pop()!);
  server.tree = tree;
  const requests = server.treeRequests;
  server.announceChange(vbp);
  await provider.getChildren();
  assert.equal(server.treeRequests, requests + 1);
  const moved = await find(provider, 'Inventory', 'Archive', 'modStock');
  assert.equal(moved.type, 'component');
  // The folder that was empty is a new node to VS Code, so it opens on what it now holds.
  const archive = await item(provider, await find(provider, 'Inventory', 'Archive'));
  assert.equal(archive.collapsibleState, vscode.TreeItemCollapsibleState.Expanded);
  assert.notEqual(archive.id, archiveBefore);
  assert.deepEqual(await provider.getChildren(await find(provider, 'Inventory', 'Stock Logic')), []);
});

test('dropping components on a folder moves them there through the server', async () => {
  const { provider, server, reports } = setup();
  const stock = (await find(provider, 'Inventory', 'Stock Logic', 'modStock')) as ComponentElement;
  const legacy = (await find(provider, 'Inventory', 'Data Access', 'modLegacy')) as ComponentElement;
  const tools = (await find(provider, 'Tools', 'modTools')) as ComponentElement;
  const archive = await find(provider, 'Inventory', 'Archive');
  const forms = await find(provider, 'Inventory', 'Forms');

  const drag = (list: TreeElement[]) => {
    const data = new vscode.DataTransfer();
    provider.handleDrag(list, data as any);
    return data;
  };
  // Folders themselves are not dragged.
  assert.equal(drag([archive]).get('application/vnd.code.tree.arboletprojects'), undefined);

  await provider.handleDrop(archive, drag([stock, legacy, tools]) as any);
  assert.deepEqual(server.commands, [
    { command: 'arbolet.folders.move', arguments: [vbp, 'modStock', 'Archive'] },
    { command: 'arbolet.folders.move', arguments: [vbp, 'modLegacy', 'Archive'] },
  ]);
  assert.deepEqual(reports, ['modTools belongs to another project; it can only move between folders of its own.']);

  server.commands = [];
  server.refusals.set('arbolet.folders.move', 'The file Inventory.vbp changed since it was read.');
  reports.length = 0;
  await provider.handleDrop(forms, drag([stock]) as any);
  assert.deepEqual(server.commands, [{ command: 'arbolet.folders.move', arguments: [vbp, 'modStock', ''] }]);
  assert.deepEqual(reports, ['The file Inventory.vbp changed since it was read.']);

  // A drop where the component already is sends nothing.
  server.commands = [];
  await provider.handleDrop(stock, drag([stock]) as any);
  assert.deepEqual(server.commands, []);
});

test('a drop place is a custom folder, or the fixed group for fixed groups, projects and a component of one', async () => {
  const { provider } = setup();
  assert.deepEqual(dropPlace(await find(provider, 'Inventory', 'Archive')), { project: vbp, folder: 'Archive' });
  assert.deepEqual(dropPlace(await find(provider, 'Inventory', 'Forms')), { project: vbp, folder: '' });
  assert.deepEqual(dropPlace(await find(provider, 'Tools')), { project: toolsVbp, folder: '' });
  assert.deepEqual(dropPlace(await find(provider, 'Inventory', 'Data Access', 'modLegacy')), { project: vbp, folder: 'Data Access' });
  assert.equal(dropPlace(await find(provider, 'Inventory', 'Data Access', 'modLegacy', 'OpenStore')), undefined);
});
