// Between the navigator and the outline: dragged, or moved with the arrow keys.
import { keepNavigatorWidth, kNarrowestNavigator, kWidestNavigator, setNavigatorWidth } from "../settings";
import { useStore } from "../store";

const kStep = 20;

export function Divider() {
  const width = useStore((state) => state.navigatorWidth);
  const onPointerDown = (event: PointerEvent) => {
    const divider = event.currentTarget as HTMLElement;
    const offset = event.clientX - width;
    divider.setPointerCapture(event.pointerId);
    divider.onpointermove = (move) => setNavigatorWidth(move.clientX - offset);
    divider.onpointerup = divider.onpointercancel = () => {
      divider.onpointermove = divider.onpointerup = divider.onpointercancel = null;
      keepNavigatorWidth();
    };
  };
  const onKeyDown = (event: KeyboardEvent) => {
    const by = event.key === "ArrowRight" ? kStep : event.key === "ArrowLeft" ? -kStep : 0;
    if (by === 0) return;
    event.preventDefault();
    setNavigatorWidth(width + by);
    keepNavigatorWidth();
  };
  return (
    <div
      class="divider"
      role="separator"
      tabIndex={0}
      aria-label="Width of the navigator"
      aria-orientation="vertical"
      aria-valuenow={width}
      aria-valuemin={kNarrowestNavigator}
      aria-valuemax={kWidestNavigator}
      onPointerDown={onPointerDown}
      onKeyDown={onKeyDown}
    />
  );
}
