// Starts `arbolet lsp` for VB6 files and projects and shows the "VB6 Projects" view over it.

import * as fs from 'fs';
import * as vscode from 'vscode';
import { LanguageClient, LanguageClientOptions, ServerOptions } from 'vscode-languageclient/node';
import { followCursor, registerCommands } from './commands';
import { resolveServerPath, serverExecutable } from './serverPath';
import { serverSettings, ServerSettings } from './settings';
import { errorNodeScheme, ProjectTreeProvider, viewId } from './treeProvider';
import { TreeElement } from './treeModel';
import { treeServerOver } from './treeServer';

let client: LanguageClient | undefined;

export function currentSettings(): ServerSettings {
  const arbolet = vscode.workspace.getConfiguration('arbolet');
  const encoding = vscode.workspace.getConfiguration('files', { languageId: 'vb6' }).get('encoding');
  return serverSettings((key) => arbolet.get(key), encoding);
}

export async function activate(context: vscode.ExtensionContext): Promise<void> {
  const output = vscode.window.createOutputChannel('Arbolet');
  context.subscriptions.push(output);
  const found = resolveServerPath(vscode.workspace.getConfiguration('arbolet').get('path'), {
    platform: process.platform,
    arch: process.arch,
    extensionPath: context.extensionPath,
    searchPath: process.env.PATH,
    pathExt: process.env.PATHEXT,
    isFile: (f) => {
      try {
        return fs.statSync(f).isFile();
      } catch {
        return false;
      }
    },
  });
  if ('tried' in found) {
    await startFailed(`Arbolet cannot find the arbolet program (looked at ${found.tried.join(', ')}).`);
    return;
  }
  if (found.source === 'bundled') makeExecutable(found.command);
  output.appendLine(`Starting ${found.command} lsp (${found.source})`);

  const watcher = vscode.workspace.createFileSystemWatcher('**/*.{vbp,vbg}');
  context.subscriptions.push(watcher);
  const serverOptions: ServerOptions = serverExecutable(found.command);
  const clientOptions: LanguageClientOptions = {
    documentSelector: [
      { scheme: 'file', language: 'vb6' },
      { scheme: 'file', language: 'vb6-project' },
    ],
    synchronize: { fileEvents: watcher },
    initializationOptions: { ...currentSettings(), blocks: true },
    outputChannel: output,
  };
  client = new LanguageClient('arbolet', 'Arbolet', serverOptions, clientOptions);
  try {
    await client.start();
  } catch (error) {
    client = undefined;
    await startFailed(`Arbolet could not start ${found.command} lsp: ${error instanceof Error ? error.message : String(error)}`);
    return;
  }
  // deactivate() stops the client; stopping it twice is an error.
  const started = client;

  const server = treeServerOver(
    { sendRequest: (m, p) => started.sendRequest(m, p), onNotification: (m, h) => started.onNotification(m, h) },
    async (uri) => {
      // Opening the document makes the client send its text, so the tree follows unsaved edits.
      await vscode.workspace.openTextDocument(vscode.Uri.parse(uri));
    },
  );
  const iconFolder = vscode.Uri.joinPath(context.extensionUri, 'media', 'icons');
  const provider = new ProjectTreeProvider(server, iconFolder, (m) => void vscode.window.showErrorMessage(m));
  const view = vscode.window.createTreeView<TreeElement>(viewId, {
    treeDataProvider: provider,
    dragAndDropController: provider,
    showCollapseAll: true,
    canSelectMany: true,
  });
  const ctx = { server, provider, view };
  context.subscriptions.push(
    view,
    view.onDidExpandElement((e) => provider.setExpanded(e.element, true)),
    view.onDidCollapseElement((e) => provider.setExpanded(e.element, false)),
    ...registerCommands(ctx),
    vscode.window.registerFileDecorationProvider({
      provideFileDecoration: (uri) =>
        uri.scheme === errorNodeScheme ? { color: new vscode.ThemeColor('errorForeground') } : undefined,
    }),
  );

  const refreshProjects = debounce(() => void provider.refresh(), 300);
  context.subscriptions.push(
    watcher.onDidCreate(refreshProjects),
    watcher.onDidChange(refreshProjects),
    watcher.onDidDelete(refreshProjects),
  );
  const changedDocuments = new Map<string, () => void>();
  context.subscriptions.push(
    vscode.workspace.onDidChangeTextDocument((e) => {
      if (e.document.languageId !== 'vb6') return;
      const uri = e.document.uri.toString();
      let refresh = changedDocuments.get(uri);
      if (!refresh) changedDocuments.set(uri, (refresh = debounce(() => provider.refreshDocument(uri), 500)));
      refresh();
    }),
  );
  const follow = debounce((editor: vscode.TextEditor) => {
    void followCursor(ctx, editor.document.uri, editor.selection.active.line);
  }, 200);
  context.subscriptions.push(
    vscode.window.onDidChangeTextEditorSelection((e) => {
      if (e.textEditor.document.languageId !== 'vb6') return;
      if (vscode.workspace.getConfiguration('arbolet').get('followCursor') !== true) return;
      follow(e.textEditor);
    }),
  );
  context.subscriptions.push(
    vscode.workspace.onDidChangeConfiguration((e) => {
      if (e.affectsConfiguration('arbolet.path')) {
        void vscode.window
          .showInformationMessage('Arbolet uses the new program after a reload of the window.', 'Reload')
          .then((choice) => choice && vscode.commands.executeCommand('workbench.action.reloadWindow'));
      }
      if (e.affectsConfiguration('arbolet') || e.affectsConfiguration('files.encoding', { languageId: 'vb6' })) {
        void started
          .sendNotification('workspace/didChangeConfiguration', { settings: { arbolet: currentSettings() } })
          .then(() => provider.refreshCode());
      }
    }),
  );
}

export async function deactivate(): Promise<void> {
  const running = client;
  client = undefined;
  await running?.stop().catch(() => undefined);
}

async function startFailed(message: string): Promise<void> {
  await vscode.commands.executeCommand('setContext', 'arbolet.serverFailed', true);
  // An empty view shows its welcome text, which offers to set the path.
  vscode.window.registerTreeDataProvider(viewId, { getTreeItem: (e: vscode.TreeItem) => e, getChildren: () => [] });
  const choice = await vscode.window.showErrorMessage(message, 'Set path');
  if (choice === 'Set path') await vscode.commands.executeCommand('workbench.action.openSettings', 'arbolet.path');
}

// A .vsix unpacked by an older VS Code may lose the program's execute permission.
function makeExecutable(file: string): void {
  if (process.platform === 'win32') return;
  try {
    fs.accessSync(file, fs.constants.X_OK);
  } catch {
    try {
      fs.chmodSync(file, 0o755);
    } catch {
      // the start then fails with a message that names the file
    }
  }
}

function debounce<A extends unknown[]>(run: (...args: A) => void, ms: number): (...args: A) => void {
  let timer: NodeJS.Timeout | undefined;
  return (...args: A) => {
    if (timer) clearTimeout(timer);
    timer = setTimeout(() => run(...args), ms);
  };
}
