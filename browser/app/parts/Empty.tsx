// What stands where a list has nothing to show: why, and what to do.
import type { ComponentChildren } from "preact";

export function Empty({ title, children }: { title: string; children?: ComponentChildren }) {
  return (
    <div class="empty">
      <p class="empty-title">{title}</p>
      {children && <div class="empty-text">{children}</div>}
    </div>
  );
}
