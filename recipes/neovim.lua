-- Neovim 0.7 or later: `C3 · 47%` in the status line, for the task that works in the current
-- folder; nothing if there is none.
-- Copy to ~/.config/nvim/lua/brimlet.lua and put into init.lua:
--
--     local brimlet = require('brimlet')
--     vim.o.statusline = '%f %h%m%r%=' .. brimlet.item .. ' %l,%c %P'
--
-- %{...} shows the text as it is. Do not use %{%...%}, which would take a title for a part of the
-- status line's format.
local M = { item = "%{v:lua.require'brimlet'.text()}" }

local shown = ''
local job

function M.text()
  return shown
end

local function follow()
  if job then
    vim.fn.jobstop(job)
  end
  shown = ''
  local rest = ''
  job = vim.fn.jobstart({ 'brimletctl', 'watch', '--here', '--format', '{status}  {folder}' }, {
    on_stdout = function(id, pieces) -- The first piece ends an earlier line; the last has no end yet.
      pieces[1] = rest .. pieces[1]
      rest = table.remove(pieces)
      if id == job and #pieces > 0 then
        shown = pieces[#pieces]:match('^(.-)  /') or '' -- The folder is -- where there is no task.
        vim.cmd('redrawstatus!')
      end
    end,
  })
end

follow()
vim.api.nvim_create_autocmd('DirChanged', { callback = follow })
return M
