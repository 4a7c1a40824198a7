vim9script
# Tells Navrel where the user is, and goes where Navrel asks to go. Needs Vim 9.
#
# Install: copy this folder to ~/.vim/pack/navrel/start/navrel. Vim connects by itself, also when
# Navrel is started later. Neovim needs no plug-in.

if exists('g:loaded_navrel') || !has('channel') || empty($XDG_RUNTIME_DIR)
    finish
endif
g:loaded_navrel = true

const address = 'unix:' .. $XDG_RUNTIME_DIR .. '/nl.kelvane.Navrel.editor'
var channel: channel = null_channel
var told: dict<any> = {}

def IsConnected(): bool
    return channel != null_channel && ch_status(channel) ==# 'open'
enddef

def Send(message: dict<any>)
    if IsConnected()
        ch_sendraw(channel, json_encode(message) .. "\n")
    endif
enddef

# Where the user is; only when that has changed, and at most ten times a second. Nothing is told of
# the way to a place that was asked for.
var is_pausing = false
var is_due = false
var is_serving = false

def EndPause(_: number)
    is_pausing = false
    if is_due
        Tell()
    endif
enddef

def Tell()
    is_due = is_pausing || is_serving
    if is_due
        return
    endif
    const is_file = empty(&buftype) && !empty(expand('%'))
    const place = {
        active: is_file ? expand('%:p') : v:null,
        line: line('.'),
        column: strchars(strpart(getline('.'), 0, col('.') - 1)) + 1,
        modified: &modified,
    }
    if place != told
        told = place
        Send(place)
        is_pausing = true
        timer_start(100, EndPause)
    endif
enddef

# Shows a file without asking the user anything: an unsaved buffer stays loaded, and a file that
# another editor has open is shown for reading.
def Show(path: string, line: number, column: number)
    const buffer = bufadd(path)
    normal! m'
    augroup navrel_open
        autocmd SwapExists * v:swapchoice = 'o'
        autocmd FileChangedShell * v:fcs_choice = v:fcs_reason ==# 'changed' ? 'reload' : ''
    augroup END
    try
        execute 'silent keepjumps hide buffer' buffer
    finally
        autocmd! navrel_open
    endtry
    setbufvar(buffer, '&buflisted', true)
    if line > 0
        const row = min([line, line('$')])
        const text = getline(row)
        const byte = column > 0 ? byteidxcomp(text, column - 1) : 0
        cursor(row, byte < 0 ? max([1, len(text)]) : byte + 1)
        normal! zvzz
        if column == 0
            normal! V
        endif
    endif
    redraw
enddef

def Go(request: dict<any>)
    if has_key(request, 'open')
        Show(request.open, get(request, 'line', 0), get(request, 'column', 0))
    else
        execute "normal! \<C-o>"
        redraw
    endif
enddef

def Perform(request: dict<any>)
    var answer: dict<any> = {opened: request.id}
    is_serving = true
    try
        Go(request)
    catch
        answer = {refused: request.id, reason: v:exception}
    endtry
    is_serving = false
    Tell()
    Send(answer)
    # A key that does nothing: without one, Vim counts as in the middle of a command until the user
    # types, where it was led here from another mode.
    feedkeys("\<Ignore>", 'n')
enddef

# Whether Vim waits for the user's next key: half a command, or a prompt. No key of ours must
# answer that.
def WaitsForAKey(): bool
    return mode(1) =~# '^\%(no\|r\|!\)' || (mode(1) =~# '^n' && !empty(state('mS')))
enddef

def Serve(request: dict<any>, tries: number)
    if WaitsForAKey()
        Send({refused: request.id, reason: 'Vim waits for a key.'})
        return
    endif
    if mode(1) =~# '^nt\?$' && empty(getcmdwintype())
        Perform(request)
        return
    endif
    if tries == 0
        Send({refused: request.id, reason: 'Vim is in the middle of something.'})
        return
    endif
    # These keys leave every mode, and no mapping changes them. A command-line window needs more.
    feedkeys("\<C-\>\<C-n>" .. (empty(getcmdwintype()) ? '' : "\<C-c>\<C-\>\<C-n>"), 'n')
    timer_start(20, (_) => Serve(request, tries - 1))
enddef

def Hear(_: channel, line: string)
    try
        const message = json_decode(line)
        if type(message) == v:t_dict && (has_key(message, 'open') || has_key(message, 'back'))
            Serve(message, 10)
        endif
    catch
        # Not for this plug-in.
    endtry
enddef

def SayHello()
    Send({hello: 'Vim', version: 1, pid: getpid(), folders: [getcwd()]})
enddef

def Connect()
    if IsConnected()
        return
    endif
    try
        channel = ch_open(address, {mode: 'nl', callback: Hear})
    catch
        return
    endtry
    if IsConnected()
        told = {}
        is_pausing = false
        SayHello()
        Tell()
    endif
enddef

augroup navrel
    autocmd!
    autocmd VimEnter,FocusGained * Connect() | Tell()
    autocmd BufEnter,WinEnter,CursorMoved,CursorMovedI,BufWritePost,TextChanged * Tell()
    autocmd DirChanged * SayHello()
augroup END
timer_start(3000, (_) => Connect(), {repeat: -1})
if v:vim_did_enter
    Connect()
endif
