#!/usr/bin/env python3
"""Prints our figures next to the peers' with the ratios: summarize.py OUT PEER_RESULTS."""
import json, re, sys

out, peers = sys.argv[1], sys.argv[2]

def jsonl(path):
    with open(path) as f:
        return [json.loads(line) for line in f if line.strip()]

engine = json.load(open(f"{out}/engine.json"))
warm = {}
for b in engine["benchmarks"]:
    if b.get("aggregate_name") == "median":
        warm[b["run_name"].split("/")[0]] = b["real_time"] / (1000.0 if b["time_unit"] == "us" else 1.0)
ours_cold = {r["label"].split(":")[1]: r for r in jsonl(f"{out}/cold.jsonl")}

def once(path):
    text = open(path).read()
    s = float(re.search(r": ([0-9.e+-]+) s", text).group(1))
    rss = float(re.search(r"peak RSS ([0-9.]+) MB", text).group(1))
    return s, rss

small_s, small_rss = once(f"{out}/small.txt")
big_s, big_rss = once(f"{out}/big.txt")

peer_cold = {}
for r in jsonl(f"{peers}/cold.jsonl"):
    peer, doc = r["label"].split(":")
    peer_cold.setdefault(doc, {})[peer] = r
peer_warm = {r["label"]: r for r in jsonl(f"{peers}/warm.jsonl")}

# The peers' warm per-document medians, as their kit's summary reports them.
summary = open(f"{peers}/summary.md").read()
warm_rows = {}
for line in summary.splitlines():
    cells = [c.strip() for c in line.strip("|").split("|")]
    if len(cells) > 8 and cells[0] in ("weasyprint-api", "pdfmake", "chromium-puppeteer",
                                       "chromium-puppeteer-notag"):
        try:
            warm_rows[cells[0]] = (float(cells[3]), float(cells[6]))  # invoice ms, register s
        except ValueError:
            pass

print("| measure | Vantorel | best peer | ratio (peer / ours) |")
print("|---|---|---|---|")
best_inv_warm = min(v[0] for v in warm_rows.values())
best_reg_warm = min(v[1] for v in warm_rows.values())
print(f"| invoice warm, in process | {warm['BM_Invoice']:.2f} ms | {best_inv_warm:.1f} ms | "
      f"{best_inv_warm / warm['BM_Invoice']:.0f}x |")
print(f"| register warm, in process | {warm['BM_Register']:.0f} ms | {best_reg_warm * 1000:.0f} ms | "
      f"{best_reg_warm * 1000 / warm['BM_Register']:.1f}x |")
for doc in ("invoice", "register"):
    ours = ours_cold[doc]
    best = min(peer_cold[doc].values(), key=lambda r: r["wall_med_s"])
    print(f"| {doc}, whole process | {ours['wall_med_s'] * 1000:.0f} ms, {ours['maxrss_mb']:.0f} MB "
          f"| {best['label'].split(':')[0]} {best['wall_med_s'] * 1000:.0f} ms, "
          f"{best['maxrss_mb']:.0f} MB | {best['wall_med_s'] / ours['wall_med_s']:.1f}x |")
print(f"| register 3,000 rows, one render | {small_s * 1000:.0f} ms, {small_rss:.0f} MB peak | | |")
print(f"| register 100,000 rows, one render | {big_s * 1000:.0f} ms, {big_rss:.0f} MB peak | "
      f"{big_s / small_s:.1f}x the 3,000-row time | |")
print()
print("Every peer, whole process (wall median):")
for doc in ("invoice", "register"):
    ours = ours_cold[doc]["wall_med_s"]
    for peer, r in sorted(peer_cold[doc].items(), key=lambda kv: kv[1]["wall_med_s"]):
        print(f"  {doc:8} {peer:22} {r['wall_med_s'] * 1000:8.0f} ms  {r['wall_med_s'] / ours:6.1f}x ours")
