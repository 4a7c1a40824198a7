#pragma once

/// What Neovim is told to do, in its own Lua. Paths and lines come as arguments (`...`), never as
/// part of the text.
namespace navrel {

/// Where the user is: path, line, column (both from 1, the column in characters), whether there are
/// unsaved changes. The path is empty for a terminal, a list, a help page. Seen through what floats
/// above the window, or a command-line window.
inline constexpr char kNeovimPlaceFunction[] = R"lua(
local function navrel_place()
    local api, fn = vim.api, vim.fn
    local window = api.nvim_get_current_win()
    if fn.getcmdwintype() ~= '' or api.nvim_win_get_config(window).relative ~= '' then
        local previous = fn.win_getid(fn.winnr('#'))
        if previous ~= 0 then window = previous end
    end
    local buffer = api.nvim_win_get_buf(window)
    if vim.bo[buffer].buftype ~= '' then return '', 0, 0, false end
    local cursor = api.nvim_win_get_cursor(window)
    local text = api.nvim_buf_get_lines(buffer, cursor[1] - 1, cursor[1], false)[1] or ''
    local column = fn.strchars(text:sub(1, cursor[2])) + 1
    return api.nvim_buf_get_name(buffer), cursor[1], column, vim.bo[buffer].modified
end
)lua";

/// To be put behind `kNeovimPlaceFunction`. Its value is the path alone.
inline constexpr char kNeovimActiveFileScript[] = R"lua(
return (navrel_place())
)lua";

/// To be put behind `kNeovimPlaceFunction`. Its value is a list of the four.
inline constexpr char kNeovimPlaceScript[] = R"lua(
return { navrel_place() }
)lua";

/// Leaves whatever mode the editor is in by its own keys, which no mapping changes. They take
/// effect once the script has returned; all of them are harmless when there is nothing to leave.
inline constexpr char kNeovimLeaveModeScript[] = R"lua(
local to_normal = '\28\14'
local keys = to_normal
if vim.fn.getcmdwintype() ~= '' then keys = to_normal .. '\3' .. to_normal end
vim.api.nvim_feedkeys(keys, 'n', false)
)lua";

/// Whether a file can be opened now: normal mode, outside a command-line window.
inline constexpr char kNeovimIsReadyScript[] = R"lua(
local mode = vim.api.nvim_get_mode().mode
return vim.fn.getcmdwintype() == '' and (mode == 'n' or mode == 'nt')
)lua";

/// Opens a file and selects a line, or puts the cursor at a column of it (in characters) with
/// nothing selected: one operation. Arguments: the path, and line and column where there are such.
inline constexpr char kNeovimOpenScript[] = R"lua(
local path, line, column = ...
local api, fn, cmd = vim.api, vim.fn, vim.cmd
local not_for_files = { help = true, quickfix = true, prompt = true, nofile = true }
local loses_changes = { unload = true, delete = true, wipe = true }

local function is_floating(window)
    return api.nvim_win_get_config(window).relative ~= ''
end
-- A window in which a file may take the place of what is there, without any loss.
local function is_fitting(window)
    local shown = vim.bo[api.nvim_win_get_buf(window)]
    return not is_floating(window) and not vim.wo[window].previewwindow
        and not not_for_files[shown.buftype]
        and not (shown.modified and loses_changes[shown.bufhidden])
end
local function go_to_fitting_window()
    if is_fitting(0) then return end
    local windows = api.nvim_tabpage_list_wins(0)
    for _, window in ipairs(windows) do
        if is_fitting(window) then return api.nvim_set_current_win(window) end
    end
    for _, window in ipairs(windows) do
        if not is_floating(window) then api.nvim_set_current_win(window) end
    end
    cmd('silent split')
end
-- A file that another editor has open is shown for reading; after a crash the swap file stays.
local function answer_swap_file()
    local pid = fn.swapinfo(vim.v.swapname).pid
    local gone = true
    if pid and pid > 0 then
        local _, _, failure = vim.loop.kill(pid, 0)
        gone = failure == 'ESRCH'
    end
    vim.v.swapchoice = gone and 'e' or 'o'
end
-- What has changed on the disk is read again; what has changed in both places stays as it is, and
-- writing it asks.
local function answer_changed_file()
    vim.v.fcs_choice = vim.v.fcs_reason == 'changed' and 'reload' or ''
end
local function show(buffer)
    local group = api.nvim_create_augroup('navrel_open', { clear = true })
    api.nvim_create_autocmd('SwapExists', { group = group, callback = answer_swap_file })
    api.nvim_create_autocmd('FileChangedShell', { group = group, callback = answer_changed_file })
    local done, failure = pcall(cmd, 'silent keepjumps hide buffer ' .. buffer)
    api.nvim_del_augroup_by_id(group)
    if not done and api.nvim_get_current_buf() ~= buffer then error(failure, 0) end
end

go_to_fitting_window()
local buffer = fn.bufadd(path)
cmd("normal! m'")
show(buffer)
vim.bo[buffer].buflisted = true
if line then
    local row = math.max(1, math.min(line, api.nvim_buf_line_count(buffer)))
    local text = api.nvim_buf_get_lines(buffer, row - 1, row, false)[1] or ''
    local byte = column and fn.byteidxcomp(text, column - 1) or 0
    api.nvim_win_set_cursor(0, { row, byte >= 0 and byte or #text })
    cmd(column and 'normal! zvzz' or 'normal! zvzzV')
end
)lua";

/// To be put behind `kNeovimPlaceFunction`. Sends "navrel_moved" with the four when the user gets
/// to another place, at most ten times a second, to the client of the name that it is given. Ends
/// by itself, and takes its automatic commands away, within a second of that client's end.
inline constexpr char kNeovimFollowScript[] = R"lua(
local name = ...
local api, loop = vim.api, vim.loop
local channel
for _, info in ipairs(api.nvim_list_chans()) do
    if info.client and info.client.name == name then channel = info.id end
end
if not channel then return end
local group = api.nvim_create_augroup(name, { clear = true })
local pause, watch = loop.new_timer(), loop.new_timer()
local function stop()
    pcall(api.nvim_del_augroup_by_id, group)
    for _, timer in ipairs({ pause, watch }) do
        if not timer:is_closing() then timer:close() end
    end
end
local waits = false
local function moved()
    if pause:is_closing() then return end
    if pause:is_active() then
        waits = true
        return
    end
    waits = false
    if not pcall(vim.rpcnotify, channel, 'navrel_moved', navrel_place()) then return stop() end
    pause:start(100, 0, vim.schedule_wrap(function() if waits then moved() end end))
end
api.nvim_create_autocmd({ 'BufEnter', 'WinEnter', 'CursorMoved', 'CursorMovedI', 'FocusGained',
                          'BufWritePost', 'BufModifiedSet' }, { group = group, callback = moved })
watch:start(1000, 1000, vim.schedule_wrap(function()
    if not api.nvim_get_chan_info(channel).id then stop() end
end))
moved()
)lua";

} // namespace navrel
