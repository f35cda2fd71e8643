-- Neovim's built-in client against `arbolet lsp`: the diagnostic of a missing End If at its
-- line, the outline of the module, and a definition in another module. Prints one line per
-- check and quits with a non-zero status on the first failure.
local work = os.getenv('WORK')
local failures = 0

local function say(text)
  io.stdout:write(text .. '\n')
end

local function check(ok, what)
  if ok then
    say('ok: ' .. what)
  else
    failures = failures + 1
    say('FAILED: ' .. what)
  end
end

local client_id = vim.lsp.start_client({
  cmd = { os.getenv('ARBOLET'), 'lsp' },
  root_dir = work,
  workspace_folders = { { uri = vim.uri_from_fname(work), name = 'demo' } },
  init_options = { blocks = true },
})
check(client_id ~= nil, 'the server started')

vim.cmd('edit ' .. work .. '/modMain.bas')
local buffer = vim.api.nvim_get_current_buf()
vim.lsp.buf_attach_client(buffer, client_id)

local arrived = vim.wait(10000, function()
  return #vim.diagnostic.get(buffer) > 0
end, 50)
check(arrived, 'diagnostics arrived')
local diagnostics = vim.diagnostic.get(buffer)
check(#diagnostics == 1, 'one diagnostic')
if #diagnostics > 0 then
  -- The If on line 5 (0-based 4) has no End If.
  check(diagnostics[1].lnum == 4, 'on the line of the If (got ' .. tostring(diagnostics[1].lnum) .. ')')
  check(diagnostics[1].source == 'arbolet', 'from arbolet')
  check(string.find(diagnostics[1].message, 'End If', 1, true) ~= nil, 'naming the missing End If')
end

local symbols = vim.lsp.buf_request_sync(buffer, 'textDocument/documentSymbol',
  { textDocument = vim.lsp.util.make_text_document_params(buffer) }, 10000)
local result = symbols and symbols[client_id] and symbols[client_id].result or {}
check(#result == 1 and result[1].name == 'Main', 'the outline holds Main')
if #result == 1 then
  local children = result[1].children or {}
  check(#children == 1 and children[1].name == 'If Ready() Then', 'with its If block')
  local errors = children[1] and children[1].children or {}
  check(#errors == 1 and errors[1].kind == 21, 'and the error node below it')
end

-- Twice on line 6 (0-based 5), column 9.
local definition = vim.lsp.buf_request_sync(buffer, 'textDocument/definition', {
  textDocument = vim.lsp.util.make_text_document_params(buffer),
  position = { line = 5, character = 9 },
}, 10000)
local locations = definition and definition[client_id] and definition[client_id].result or {}
check(#locations == 1 and string.find(locations[1].uri, 'modUtil.bas', 1, true) ~= nil
  and locations[1].range.start.line == 1, 'the definition of Twice is in modUtil')

vim.lsp.stop_client(client_id)
if failures == 0 then
  say('neovim lsp: all checks passed')
  vim.cmd('qall!')
else
  say('neovim lsp: ' .. failures .. ' checks failed')
  vim.cmd('cquit!')
end
