-- Neovim's own LSP client against `velmor-sql lsp`: open a file, wait for diagnostics, ask for
-- completion, hover and formatting, and write what came back to a file the test compares.
local tool = os.getenv('VELMOR_SQL_TOOL')
local file = os.getenv('VELMOR_LSP_FILE')
local out = os.getenv('VELMOR_LSP_OUT')
local lines = {}
local function say(text) table.insert(lines, text) end
local function finish(status)
  local handle = io.open(out, 'w')
  handle:write(table.concat(lines, '\n') .. '\n')
  handle:close()
  vim.cmd(status == 0 and 'qa!' or 'cq!')
end

local ok, err = pcall(function()
  vim.cmd('edit ' .. vim.fn.fnameescape(file))
  local buffer = vim.api.nvim_get_current_buf()
  local client_id = vim.lsp.start_client({
    name = 'velmor-sql',
    cmd = { tool, 'lsp', '--log-level', 'debug' },
    root_dir = vim.fn.fnamemodify(file, ':h'),
    init_options = { scoping = 'standard', diagnosticsDelay = 0 },
  })
  assert(client_id, 'the server did not start')
  vim.lsp.buf_attach_client(buffer, client_id)
  local client = vim.lsp.get_client_by_id(client_id)
  assert(vim.wait(10000, function() return client.initialized end, 20), 'no answer to initialize')
  say('server: ' .. client.name .. ', hover ' .. tostring(client.resolved_capabilities.hover))

  assert(vim.wait(10000, function() return #vim.diagnostic.get(buffer) > 0 end, 20), 'no diagnostics')
  say('diagnostics:')
  local diagnostics = vim.diagnostic.get(buffer)
  table.sort(diagnostics, function(a, b) return a.lnum < b.lnum or (a.lnum == b.lnum and a.col < b.col) end)
  for _, d in ipairs(diagnostics) do
    say(string.format('  %d:%d-%d:%d %s %s', d.lnum + 1, d.col + 1, d.end_lnum + 1, d.end_col + 1,
      tostring(d.code or (d.user_data and d.user_data.lsp and d.user_data.lsp.code)), d.message))
  end

  local function at(line, character)
    return { textDocument = { uri = vim.uri_from_bufnr(buffer) }, position = { line = line, character = character } }
  end
  local completion = client.request_sync('textDocument/completion', at(1, 17), 5000, buffer)
  assert(completion and not completion.err, 'completion failed')
  say('completion at 2:18:')
  for _, item in ipairs(completion.result.items or completion.result) do
    local edit = item.textEdit
    say(string.format('  %s (%d:%d-%d:%d)', item.label, edit.range.start.line + 1, edit.range.start.character + 1,
      edit.range['end'].line + 1, edit.range['end'].character + 1))
  end

  local hover = client.request_sync('textDocument/hover', at(0, 12), 5000, buffer)
  assert(hover and not hover.err, 'hover failed')
  say('hover at 1:13: ' .. (hover.result and hover.result.contents.value or 'nothing'))

  vim.lsp.buf.formatting_sync(nil, 5000)
  say('formatted:')
  for _, line in ipairs(vim.api.nvim_buf_get_lines(buffer, 0, -1, false)) do say('  ' .. line) end

  client.stop()
  vim.wait(5000, function() return client.is_stopped() end, 20)
end)
if not ok then
  say('error: ' .. tostring(err))
  finish(1)
else
  finish(0)
end
