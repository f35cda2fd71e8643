// The "VB6 Projects" view: projects, folders and components from the server's project tree, and
// under each component its logic-flow tree from the document symbols, red where a block is wrong.
// Components are dragged onto folders here too.

import * as vscode from 'vscode';
import { LspDocumentSymbol, ProjectTreeNode } from './protocol';
import { reasonOf, TreeServer } from './treeServer';
import {
  allComponents,
  buildCodeElements,
  buildProjectElements,
  CodeElement,
  FolderElement,
  codeElementAtLine,
  ComponentElement,
  folderOfComponent,
  iconFileOf,
  isErrorSymbol,
  ProjectElement,
  projectUriOf,
  sameFileUri,
  TreeElement,
} from './treeModel';

export const viewId = 'arboletProjects';
export const dragMime = 'application/vnd.code.tree.arboletprojects';
/** Error nodes carry a resource of this scheme so that a decoration can colour their label. */
export const errorNodeScheme = 'arbolet-error';

const symbolIcons = [
  'file', 'module', 'namespace', 'package', 'class', 'method', 'property', 'field', 'constructor', 'enum',
  'interface', 'function', 'variable', 'constant', 'string', 'number', 'boolean', 'array', 'object', 'key',
  'null', 'enum-member', 'struct', 'event', 'operator', 'type-parameter',
];

export class ProjectTreeProvider
  implements vscode.TreeDataProvider<TreeElement>, vscode.TreeDragAndDropController<TreeElement>
{
  readonly dragMimeTypes = [dragMime];
  readonly dropMimeTypes = [dragMime];

  private projects: ProjectElement[] = [];
  private loading: Promise<void> | undefined;
  private readonly code = new Map<string, Promise<CodeElement[]>>();
  private readonly collapsedFolders = new Set<string>();
  private readonly changed = new vscode.EventEmitter<TreeElement | undefined | void>();
  readonly onDidChangeTreeData = this.changed.event;

  constructor(
    private readonly server: TreeServer,
    private readonly iconFolder: vscode.Uri,
    private readonly report: (message: string) => void,
  ) {
    server.onTreeChanged(() => void this.refresh());
  }

  /** Reads the project tree again and forgets every component's code. */
  refresh(): Promise<void> {
    this.loading = this.load();
    this.code.clear();
    this.changed.fire();
    return this.loading;
  }

  private async load(): Promise<void> {
    try {
      this.projects = buildProjectElements(await this.server.projectTree());
    } catch (error) {
      this.projects = [];
      this.report(`Arbolet could not read the projects: ${reasonOf(error)}`);
    }
  }

  async roots(): Promise<ProjectElement[]> {
    if (!this.loading) this.loading = this.load();
    await this.loading;
    return this.projects;
  }

  /** A component's code changed: its subtree is read again. */
  refreshDocument(uri: string): void {
    for (const component of allComponents(this.projects)) {
      if (component.node.uri && sameFileUri(component.node.uri, uri)) {
        this.code.delete(component.id);
        this.changed.fire(component);
      }
    }
  }

  /** Display options changed: every code subtree is read again, the projects stay. */
  refreshCode(): void {
    this.code.clear();
    for (const component of allComponents(this.projects)) this.changed.fire(component);
  }

  codeOf(component: ComponentElement): Promise<CodeElement[]> {
    let promise = this.code.get(component.id);
    if (!promise) {
      const uri = component.node.uri;
      promise = uri
        ? this.server.documentSymbols(uri).then(
            (symbols) => buildCodeElements(component, symbols),
            (error) => {
              this.report(`Arbolet could not read the code of ${component.node.text}: ${reasonOf(error)}`);
              return [];
            },
          )
        : Promise.resolve([]);
      this.code.set(component.id, promise);
    }
    return promise;
  }

  async getChildren(element?: TreeElement): Promise<TreeElement[]> {
    if (!element) return this.roots();
    switch (element.type) {
      case 'project':
      case 'folder':
        return element.children;
      case 'component':
        return this.codeOf(element);
      case 'code':
        return element.children;
    }
  }

  getParent(element: TreeElement): TreeElement | undefined {
    return element.parent;
  }

  async getTreeItem(element: TreeElement): Promise<vscode.TreeItem> {
    const item = await this.itemOf(element);
    // Screen readers read the tooltip unless told otherwise, and ours is a path or a line number.
    const label = typeof item.label === 'string' ? item.label : (item.label?.label ?? '');
    item.accessibilityInformation = { label: item.description ? `${label}, ${item.description}` : label };
    return item;
  }

  private async itemOf(element: TreeElement): Promise<vscode.TreeItem> {
    switch (element.type) {
      case 'project':
        return this.projectItem(element);
      case 'folder':
        return this.folderItem(element);
      case 'component':
        return this.componentItem(element, await this.codeOf(element));
      case 'code':
        return codeItem(element);
    }
  }

  private projectItem(project: ProjectElement): vscode.TreeItem {
    const item = new vscode.TreeItem(project.node.text, vscode.TreeItemCollapsibleState.Expanded);
    item.id = project.id;
    item.contextValue = 'project';
    if (project.node.bold) item.description = 'start-up';
    item.iconPath = this.icon(project.node, true);
    const file = project.node.uri ?? project.node.project;
    if (file) item.tooltip = vscode.Uri.parse(file).fsPath;
    return item;
  }

  private folderItem(folder: FolderElement): vscode.TreeItem {
    const expanded = !this.collapsedFolders.has(folder.id);
    const state =
      folder.children.length === 0
        ? vscode.TreeItemCollapsibleState.None
        : expanded
          ? vscode.TreeItemCollapsibleState.Expanded
          : vscode.TreeItemCollapsibleState.Collapsed;
    const item = new vscode.TreeItem(folder.node.text, state);
    item.id = folder.id;
    item.contextValue = folder.node.custom ? 'customFolder' : 'folder';
    item.iconPath = this.icon(folder.node, expanded);
    return item;
  }

  private componentItem(component: ComponentElement, code: CodeElement[]): vscode.TreeItem {
    const state =
      code.length === 0
        ? vscode.TreeItemCollapsibleState.None
        : code.some((c) => c.hasError)
          ? vscode.TreeItemCollapsibleState.Expanded
          : vscode.TreeItemCollapsibleState.Collapsed;
    const item = new vscode.TreeItem(component.node.text, state);
    item.id = component.id;
    item.contextValue = 'component';
    item.iconPath = this.icon(component.node, false);
    if (component.node.uri) {
      const uri = vscode.Uri.parse(component.node.uri);
      item.resourceUri = uri;
      item.tooltip = uri.fsPath;
      item.command = { command: 'vscode.open', title: 'Open', arguments: [uri] };
    }
    const folder = folderOfComponent(component);
    if (folder) item.tooltip = `${item.tooltip ?? component.node.text}\nFolder: ${folder}`;
    return item;
  }

  private icon(node: ProjectTreeNode, expanded: boolean): vscode.Uri | undefined {
    const file = iconFileOf(node, expanded);
    return file ? vscode.Uri.joinPath(this.iconFolder, `${file}@2x.png`) : undefined;
  }

  /** Folders show an open or closed picture, so their item changes with the expansion. */
  setExpanded(element: TreeElement, expanded: boolean): void {
    if (element.type !== 'folder' || element.node.custom) return;
    if (expanded) this.collapsedFolders.delete(element.id);
    else this.collapsedFolders.add(element.id);
    this.changed.fire(element);
  }

  findComponent(uri: string): ComponentElement | undefined {
    return allComponents(this.projects).find((c) => c.node.uri !== undefined && sameFileUri(c.node.uri, uri));
  }

  /** The node of a line (0-based) of a component's file: its innermost code node, else the component. */
  async elementAtLine(uri: string, line: number): Promise<TreeElement | undefined> {
    await this.roots();
    const component = this.findComponent(uri);
    if (!component) return undefined;
    return codeElementAtLine(await this.codeOf(component), line) ?? component;
  }

  handleDrag(source: readonly TreeElement[], data: vscode.DataTransfer): void {
    const components = source.filter((e): e is ComponentElement => e.type === 'component');
    if (components.length) data.set(dragMime, new vscode.DataTransferItem(components));
  }

  async handleDrop(target: TreeElement | undefined, data: vscode.DataTransfer): Promise<void> {
    const dragged = data.get(dragMime)?.value as ComponentElement[] | undefined;
    if (!target || !Array.isArray(dragged)) return;
    const place = dropPlace(target);
    if (!place) return;
    for (const component of dragged) {
      const project = projectUriOf(component);
      if (!project || !sameFileUri(project, place.project)) {
        this.report(`${component.node.text} belongs to another project; it can only move between folders of its own.`);
        continue;
      }
      if (folderOfComponent(component) === place.folder) continue;
      try {
        await this.server.executeCommand({
          command: 'arbolet.folders.move',
          arguments: [project, component.node.text, place.folder],
        });
      } catch (error) {
        this.report(reasonOf(error));
      }
    }
    await this.refresh();
  }
}

/** Where a drop on a node puts a component: a custom folder, or back into its fixed group. */
export function dropPlace(target: TreeElement): { project: string; folder: string } | undefined {
  const project = projectUriOf(target);
  if (!project) return undefined;
  switch (target.type) {
    case 'folder':
      return { project, folder: target.node.custom ? target.node.text : '' };
    case 'component':
      return { project, folder: folderOfComponent(target) };
    case 'project':
      return { project, folder: '' };
    default:
      return undefined;
  }
}

function codeItem(element: CodeElement): vscode.TreeItem {
  const symbol = element.symbol;
  const state =
    element.children.length === 0
      ? vscode.TreeItemCollapsibleState.None
      : element.hasError
        ? vscode.TreeItemCollapsibleState.Expanded
        : vscode.TreeItemCollapsibleState.Collapsed;
  const item = new vscode.TreeItem(symbol.name, state);
  item.id = element.id;
  const uri = element.component.node.uri ? vscode.Uri.parse(element.component.node.uri) : undefined;
  if (isErrorSymbol(symbol)) {
    item.iconPath = new vscode.ThemeIcon('error', new vscode.ThemeColor('errorForeground'));
    item.contextValue = 'codeError';
    item.resourceUri = vscode.Uri.from({ scheme: errorNodeScheme, path: `/${encodeURIComponent(element.id)}` });
  } else {
    item.iconPath = new vscode.ThemeIcon(`symbol-${symbolIcons[symbol.kind - 1] ?? 'misc'}`);
    item.contextValue = 'code';
  }
  if (symbol.detail) item.description = symbol.detail;
  item.tooltip = `${symbol.name}${symbol.detail ? ` (${symbol.detail})` : ''}\nLine ${symbol.selectionRange.start.line + 1}`;
  if (uri) {
    item.command = {
      command: 'arbolet.projects.revealLine',
      title: 'Go to line',
      arguments: [uri, symbol.selectionRange.start.line, symbol.selectionRange.start.character],
    };
  }
  return item;
}

export function symbolIconName(symbol: LspDocumentSymbol): string {
  return isErrorSymbol(symbol) ? 'error' : `symbol-${symbolIcons[symbol.kind - 1] ?? 'misc'}`;
}
