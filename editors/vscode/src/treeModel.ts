// The elements of the "VB6 Projects" view, built from the server's project tree and, under each
// component, from its document symbols. Nothing here touches VS Code, so the shape of the tree
// (ids, parents, which nodes open by themselves, which line selects which node) is tested alone.

import { ErrorSymbolKind, LspDocumentSymbol, ProjectTreeNode } from './protocol';

export interface ProjectElement {
  type: 'project';
  id: string;
  node: ProjectTreeNode;
  parent?: undefined;
  children: TreeElement[];
}

export interface FolderElement {
  type: 'folder';
  id: string;
  node: ProjectTreeNode;
  parent: ProjectElement;
  children: TreeElement[];
}

export interface ComponentElement {
  type: 'component';
  id: string;
  node: ProjectTreeNode;
  parent: ProjectElement | FolderElement;
}

export interface CodeElement {
  type: 'code';
  id: string;
  symbol: LspDocumentSymbol;
  component: ComponentElement;
  parent: ComponentElement | CodeElement;
  children: CodeElement[];
  hasError: boolean;
}

export type TreeElement = ProjectElement | FolderElement | ComponentElement | CodeElement;
export type ProjectLevelElement = ProjectElement | FolderElement | ComponentElement;

/** Builds the project, folder and component elements; ids follow the keys down from the root. */
export function buildProjectElements(nodes: ProjectTreeNode[]): ProjectElement[] {
  const used = new Set<string>();
  const projects: ProjectElement[] = [];
  for (const node of nodes) {
    if (node.kind !== 'project') continue;
    const project: ProjectElement = { type: 'project', id: uniqueId(used, `p:${node.key}`), node, children: [] };
    project.children = childElements(node.children, project, project, used);
    projects.push(project);
  }
  return projects;
}

function childElements(
  nodes: ProjectTreeNode[],
  parent: ProjectElement | FolderElement,
  project: ProjectElement,
  used: Set<string>,
): TreeElement[] {
  const out: TreeElement[] = [];
  for (const node of nodes) {
    // VS Code keeps a closed state for an id it showed with nothing to open, so a folder that
    // gets its first component would stay closed over it: an empty folder has an id of its own.
    const empty = node.kind === 'folder' && node.children.length === 0 ? '~empty' : '';
    const id = uniqueId(used, `${parent.id}/${node.key}${empty}`);
    if (node.kind === 'component') {
      out.push({ type: 'component', id, node, parent });
    } else if (node.kind === 'folder' && parent.type === 'project') {
      const folder: FolderElement = { type: 'folder', id, node, parent: project, children: [] };
      folder.children = childElements(node.children, folder, project, used);
      out.push(folder);
    }
  }
  return out;
}

// Two nodes with one key under one parent would break the view (VS Code rejects duplicate ids).
function uniqueId(used: Set<string>, id: string): string {
  let candidate = id;
  for (let n = 2; used.has(candidate); n++) candidate = `${id}#${n}`;
  used.add(candidate);
  return candidate;
}

/** The code elements of one component from its document symbols. */
export function buildCodeElements(component: ComponentElement, symbols: LspDocumentSymbol[]): CodeElement[] {
  const used = new Set<string>();
  const build = (list: LspDocumentSymbol[], parent: ComponentElement | CodeElement): CodeElement[] =>
    list.map((symbol) => {
      const id = uniqueId(used, `${parent.id}/${symbol.range.start.line}:${symbol.kind}:${symbol.name}`);
      const element: CodeElement = { type: 'code', id, symbol, component, parent, children: [], hasError: false };
      element.children = build(symbol.children ?? [], element);
      element.hasError = symbol.kind === ErrorSymbolKind || element.children.some((c) => c.hasError);
      return element;
    });
  return build(symbols, component);
}

export function isErrorSymbol(symbol: LspDocumentSymbol): boolean {
  return symbol.kind === ErrorSymbolKind;
}

/** The innermost code element whose range holds the line (0-based), preferring the last opened. */
export function codeElementAtLine(elements: CodeElement[], line: number): CodeElement | undefined {
  let found: CodeElement | undefined;
  let level = elements;
  for (;;) {
    let next: CodeElement | undefined;
    for (const e of level) {
      const { start, end } = e.symbol.range;
      if (start.line <= line && line <= end.line) next = e;
    }
    if (!next) return found;
    found = next;
    level = next.children;
  }
}

/** The .vbp an element belongs to, as the server's commands take it. */
export function projectUriOf(element: TreeElement): string | undefined {
  switch (element.type) {
    case 'project':
      return element.node.project ?? element.node.uri;
    case 'code':
      return projectUriOf(element.component);
    default:
      return element.node.project ?? projectUriOf(element.parent);
  }
}

export function projectOf(element: TreeElement): ProjectElement {
  let e: TreeElement = element;
  while (e.type !== 'project') e = e.type === 'code' ? e.component : e.parent;
  return e;
}

/** The custom folders of the project an element is in, in the tree's order. */
export function customFolderNames(element: TreeElement): string[] {
  return projectOf(element)
    .children.filter((c): c is FolderElement => c.type === 'folder' && c.node.custom === true)
    .map((f) => f.node.text);
}

/** The name of the folder a component sits in ("" for a fixed group or none). */
export function folderOfComponent(component: ComponentElement): string {
  const parent = component.parent;
  return parent.type === 'folder' && parent.node.custom === true ? parent.node.text : '';
}

/** Every component element, depth first. */
export function allComponents(projects: ProjectElement[]): ComponentElement[] {
  const out: ComponentElement[] = [];
  const walk = (list: TreeElement[]) => {
    for (const e of list) {
      if (e.type === 'component') out.push(e);
      else if (e.type === 'project' || e.type === 'folder') walk(e.children);
    }
  };
  walk(projects);
  return out;
}

/** Compares file URIs as the file system would: Windows drive letters and escapes differ in case. */
export function sameFileUri(a: string, b: string): boolean {
  const norm = (u: string) => {
    let s = u;
    try {
      s = decodeURIComponent(u);
    } catch {
      // a malformed escape keeps the text as it came
    }
    s = s.replace(/^file:\/\/\/([A-Za-z]):/, (_m, d: string) => `file:///${d.toLowerCase()}:`);
    return /^file:\/\/\/[a-z]:/.test(s) ? s.toLowerCase() : s;
  };
  return norm(a) === norm(b);
}

/** The icon picture of a node: the stable name the server gives, as the PNG it was drawn as. */
const iconFiles: Record<string, string> = {
  project: 'project',
  'project-startup': 'startup_project',
  'folder-closed': 'group_closed',
  'folder-open': 'group_open',
  'custom-folder': 'custom_folder',
  module: 'module',
  class: 'class',
  form: 'form',
  mdiform: 'mdi_form',
  usercontrol: 'user_control',
  propertypage: 'property_page',
  userdocument: 'user_document',
  designer: 'designer',
  relateddoc: 'related_document',
  resource: 'resource_file',
};

export function iconFileOf(node: ProjectTreeNode, expanded: boolean): string | undefined {
  let icon = node.icon;
  if (node.kind === 'project' && !iconFiles[icon]) icon = node.bold ? 'project-startup' : 'project';
  if (node.kind === 'folder') {
    if (node.custom) icon = 'custom-folder';
    else icon = expanded ? 'folder-open' : 'folder-closed';
  }
  if (node.kind === 'component' && !iconFiles[icon]) icon = 'module';
  return iconFiles[icon];
}

export const iconNames: readonly string[] = Object.values(iconFiles);
