#include "editors/emacs/EmacsExpressions.h"

namespace navrel {

namespace {

// Evaluated with lexical scope: the names below must not meet variables of the user's own.
// No library is loaded: that would take long the first time.
constexpr char kBegin[] = "(eval '(let* (";
constexpr char kEnd[] = ") t)";

// The window that the user looks at. A daemon's first frame is seen by nobody, and the minibuffer
// holds no file.
constexpr char kBindWindow[] = R"lisp(
(coding (or file-name-coding-system default-file-name-coding-system))
(is-seen (lambda (frame) (not (equal (terminal-name frame) "initial_terminal"))))
(frame (if (funcall is-seen (selected-frame)) (selected-frame)
         (or (car (delq nil (mapcar (lambda (each) (and (funcall is-seen each) each))
                                    (frame-list))))
             (selected-frame))))
(selected (frame-selected-window frame))
(window (if (window-minibuffer-p selected)
            (or (minibuffer-selected-window) (frame-first-window frame))
          selected))
)lisp";

constexpr char kActiveFile[] = R"lisp()
(let ((name (buffer-file-name (window-buffer window))))
  (format "%d %s" (emacs-pid)
          (if name (base64-encode-string (encode-coding-string (file-name-unquote name) coding) t)
            "")))
)lisp";

constexpr char kPlace[] = R"lisp()
(with-current-buffer (window-buffer window)
  (let ((name (buffer-file-name)) (point (window-point window)) (inhibit-field-text-motion t))
    (save-excursion
      (save-restriction
        (widen)
        (goto-char point)
        (format "%d %d %d %s" (line-number-at-pos) (1+ (- point (line-beginning-position)))
                (if (buffer-modified-p) 1 0)
                (if name (base64-encode-string
                          (encode-coding-string (file-name-unquote name) coding) t)
                  ""))))))
)lisp";

// The way back: the mark ring of the buffer that is left, and the global one. A path that looks
// like one of a remote file is quoted, so that it is none. Whatever would ask a question is
// answered with no, or fails: nobody may sit at this Emacs. yes-or-no-p stays as it is where a
// variable makes it ask by y-or-n-p: to redefine what is written in C loads Emacs's compiler, which
// takes a second.
constexpr char kOpen[] = R"lisp(
(bytes (base64-decode-string "PATH"))
(plain (if coding (decode-coding-string bytes coding) bytes))
(path (if (string-match-p "\\`/[^/]*:" plain) (concat "/:" plain) plain))
(line LINE)
(large-file-warning-threshold nil)
(vc-follow-symlinks nil)
(enable-local-variables :safe)
(enable-local-eval nil)
(find-file-suppress-same-file-warnings t)
(create-lockfiles nil)
(inhibit-interaction t)
(use-dialog-box nil)
(use-short-answers t)
(asking (mapcar (lambda (name) (cons name (symbol-function name)))
                (append (unless (and (boundp 'use-short-answers)
                                     (subrp (symbol-function 'yes-or-no-p)))
                          '(yes-or-no-p))
                        '(y-or-n-p ask-user-about-lock ask-user-about-supersession-threat
                          sit-for)))))
(unwind-protect
 (progn
  (mapc (lambda (each) (fset (car each) #'ignore)) asking)
  (condition-case failure
      (let ((open-already (find-buffer-visiting path)) buffer)
        (select-frame frame)
        (select-window window)
        (push-mark nil t)
        (unless (equal (car global-mark-ring) (point-marker))
          (push (point-marker) global-mark-ring))
        JUMP
        (setq buffer (find-file-noselect path t))
        (pop-to-buffer-same-window buffer)
        (and open-already (not (buffer-modified-p)) (file-exists-p path)
             (not (verify-visited-file-modtime buffer))
             (revert-buffer t t t))
        (when line
          (let ((global-mark-ring nil) (inhibit-field-text-motion t) begin)
            (save-restriction
              (widen)
              (goto-char (point-min))
              (forward-line (1- line))
              (beginning-of-line)
              (setq begin (point)))
            (unless (<= (point-min) begin (point-max)) (widen))
            (goto-char begin)
            SELECT
            (setq deactivate-mark nil)
            (ignore-errors (recenter))))
        'opened)
    (error (error-message-string failure))))
 (mapc (lambda (each) (fset (car each) (cdr each))) asking))
)lisp";

} // namespace

QByteArray emacsActiveFileExpression() {
    return QByteArray(kBegin) + kBindWindow + kActiveFile + kEnd;
}

namespace {

/// What `kOpen` leaves open. None of these words occurs in base64 followed by what stands there.
struct OpenForm {
    QByteArray jump;   ///< done before the buffer is left
    QByteArray select; ///< done at the beginning of the line
};

QByteArray openExpression(const QByteArray& path, std::optional<int> line, const OpenForm& form) {
    // PATH last: base64 has letters, a number and the forms have none of these words.
    return QByteArray(kBegin) + kBindWindow +
           QByteArray(kOpen)
               .replace("JUMP", form.jump)
               .replace("SELECT", form.select)
               .replace("LINE", line ? QByteArray::number(*line) : "nil")
               .replace("PATH", path.toBase64()) +
           kEnd;
}

constexpr char kSelectLine[] = "(push-mark (line-end-position) t t)";

} // namespace

QByteArray emacsOpenExpression(const QByteArray& path, std::optional<int> line) {
    return openExpression(path, line, {"", kSelectLine});
}

QByteArray emacsJumpExpression(const QByteArray& path, std::optional<int> line, int column) {
    const QByteArray select = column > 0
                                  ? "(progn (deactivate-mark) (goto-char (min (+ begin " +
                                        QByteArray::number(column - 1) + ") (line-end-position))))"
                                  : QByteArray(kSelectLine);
    return openExpression(
        path, line, {"(when (fboundp 'xref-push-marker-stack) (xref-push-marker-stack))", select});
}

QByteArray emacsPlaceExpression() {
    return QByteArray(kBegin) + kBindWindow + kPlace + kEnd;
}

} // namespace navrel
