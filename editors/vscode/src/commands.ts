// The view's commands: folders, moving and renaming components, refreshing, going to a line and
// finding the open file's node. Every change to a project goes to the server, which writes the
// files; a refusal shows the server's own reason.

import * as vscode from 'vscode';
import { ServerCommand } from './protocol';
import { reasonOf, TreeServer } from './treeServer';
import { ProjectTreeProvider } from './treeProvider';
import { ComponentElement, customFolderNames, folderOfComponent, projectUriOf, TreeElement } from './treeModel';

export interface CommandContext {
  server: TreeServer;
  provider: ProjectTreeProvider;
  view: Pick<vscode.TreeView<TreeElement>, 'selection' | 'reveal' | 'visible'>;
}

/** The label of the quick pick's entry that puts a component back into its fixed group. */
export const fixedGroupPick = '(the fixed group of its kind)';

export function registerCommands(ctx: CommandContext): vscode.Disposable[] {
  const on = (name: string, run: (...args: any[]) => unknown) => vscode.commands.registerCommand(name, run);
  return [
    on('arbolet.projects.refresh', () => ctx.provider.refresh()),
    on('arbolet.projects.newFolder', (e?: TreeElement) => newFolder(ctx, target(ctx, e))),
    on('arbolet.projects.renameFolder', (e?: TreeElement) => renameFolder(ctx, target(ctx, e))),
    on('arbolet.projects.removeFolder', (e?: TreeElement) => removeFolder(ctx, target(ctx, e))),
    on('arbolet.projects.moveToFolder', (e?: TreeElement) => moveToFolder(ctx, target(ctx, e))),
    on('arbolet.projects.renameComponent', (e?: TreeElement) => renameComponent(ctx, target(ctx, e))),
    on('arbolet.projects.revealLine', (uri: vscode.Uri, line: number, character: number) => revealLine(uri, line, character)),
    on('arbolet.projects.reveal', (uri?: vscode.Uri) => revealInProjects(ctx, uri)),
  ];
}

// A context menu passes its node; the command palette and keys act on the selection.
function target(ctx: CommandContext, element: TreeElement | undefined): TreeElement | undefined {
  return element ?? ctx.view.selection[0];
}

async function run(ctx: CommandContext, command: ServerCommand): Promise<boolean> {
  try {
    await ctx.server.executeCommand(command);
  } catch (error) {
    void vscode.window.showErrorMessage(reasonOf(error));
    return false;
  }
  // The server announces the change too; reading the tree at once keeps the view from lagging.
  await ctx.provider.refresh();
  return true;
}

export async function newFolder(ctx: CommandContext, element: TreeElement | undefined): Promise<boolean> {
  const project = element && projectUriOf(element);
  if (!project) return false;
  const name = await vscode.window.showInputBox({ prompt: 'Name of the new folder', value: '' });
  if (name === undefined) return false;
  return run(ctx, { command: 'arbolet.folders.add', arguments: [project, name] });
}

export async function renameFolder(ctx: CommandContext, element: TreeElement | undefined): Promise<boolean> {
  if (element?.type !== 'folder') return false;
  const project = projectUriOf(element);
  if (!project) return false;
  const old = element.node.text;
  const name = await vscode.window.showInputBox({ prompt: `New name of the folder ${old}`, value: old });
  if (name === undefined || name === old) return false;
  return run(ctx, { command: 'arbolet.folders.rename', arguments: [project, old, name] });
}

export async function removeFolder(ctx: CommandContext, element: TreeElement | undefined): Promise<boolean> {
  if (element?.type !== 'folder' || !element.node.custom) return false;
  const project = projectUriOf(element);
  if (!project) return false;
  return run(ctx, { command: 'arbolet.folders.remove', arguments: [project, element.node.text] });
}

export async function moveToFolder(ctx: CommandContext, element: TreeElement | undefined): Promise<boolean> {
  if (element?.type !== 'component') return false;
  const project = projectUriOf(element);
  if (!project) return false;
  const current = folderOfComponent(element);
  const picks = customFolderNames(element).filter((f) => f !== current);
  if (current !== '') picks.push(fixedGroupPick);
  if (picks.length === 0) {
    void vscode.window.showInformationMessage(`${element.node.text}: the project has no other folder. Make one with New Folder.`);
    return false;
  }
  const picked = await vscode.window.showQuickPick(picks, { placeHolder: `Move ${element.node.text} to` });
  if (picked === undefined) return false;
  const folder = picked === fixedGroupPick ? '' : picked;
  return run(ctx, { command: 'arbolet.folders.move', arguments: [project, element.node.text, folder] });
}

export async function renameComponent(ctx: CommandContext, element: TreeElement | undefined): Promise<boolean> {
  if (element?.type !== 'component') return false;
  const project = projectUriOf(element);
  if (!project) return false;
  const old = element.node.text;
  const name = await vscode.window.showInputBox({ prompt: `New name of ${old}`, value: old });
  if (name === undefined || name === old) return false;
  return run(ctx, { command: 'arbolet.rename', arguments: [project, old, name] });
}

export async function revealLine(uri: vscode.Uri, line: number, character: number): Promise<void> {
  const position = new vscode.Position(Math.max(0, line), Math.max(0, character));
  await vscode.window.showTextDocument(uri, { selection: new vscode.Range(position, position), preserveFocus: false });
}

export async function revealInProjects(ctx: CommandContext, uri: vscode.Uri | undefined): Promise<ComponentElement | undefined> {
  const file = uri ?? vscode.window.activeTextEditor?.document.uri;
  if (!file) return undefined;
  await ctx.provider.roots();
  const component = ctx.provider.findComponent(file.toString());
  if (!component) {
    void vscode.window.showInformationMessage(`${file.fsPath} is not a component of a project in the VB6 Projects view.`);
    return undefined;
  }
  await ctx.view.reveal(component, { select: true, focus: true, expand: false });
  return component;
}

/** With arbolet.followCursor on, selects the node of the line under the cursor. */
export async function followCursor(ctx: CommandContext, uri: vscode.Uri, line: number): Promise<TreeElement | undefined> {
  if (!ctx.view.visible) return undefined;
  const element = await ctx.provider.elementAtLine(uri.toString(), line);
  if (element) await ctx.view.reveal(element, { select: true, focus: false, expand: false });
  return element;
}
