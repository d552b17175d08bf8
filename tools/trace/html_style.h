#ifndef TOOLS_TRACE_HTML_STYLE_H
#define TOOLS_TRACE_HTML_STYLE_H

namespace statectl::trace {

/// How the page looks, by day and by night. The classes s0 to s7 are the states, in the order of the life.
constexpr char const* k_style = R"(
:root{--paper:#fff;--ink:#1b1f24;--dim:#5d6670;--line:#d5dae0;--bad:#b3261e;--good:#3f6b3f;
--s0:#b8a6d9;--s1:#5aa469;--s2:#4f8fc0;--s3:#e0a63a;--s4:#d9793d;--s5:#7b8794;--s6:#6fc2b4;--s7:#c08497;--hold:#c2557a}
@media(prefers-color-scheme:dark){:root{--paper:#15181c;--ink:#e4e7eb;--dim:#98a2ad;--line:#343a42;--bad:#ff8a80;--good:#9ccc9c;
--s0:#8d7bb5;--s1:#4a8a57;--s2:#3f78a6;--s3:#b98526;--s4:#b9602c;--s5:#5f6a75;--s6:#4f9c90;--s7:#9a5f72;--hold:#d0708f}}
body{background:var(--paper);color:var(--ink);font:15px/1.45 system-ui,sans-serif;max-width:62rem;margin:2rem auto;padding:0 1rem}
h1{font-size:1.4rem;margin:0}h2{font-size:1.1rem;margin:2rem 0 .4rem}h3{font-size:1rem;margin:1.2rem 0 .2rem}
h3 span,p,summary{color:var(--dim);font-weight:normal}.bad{color:var(--bad)}.good{color:var(--good);font-weight:normal}
section,h2+div{overflow-x:auto}svg{display:block;width:100%;min-width:44rem;height:auto}svg text{font:11px system-ui,sans-serif;fill:var(--ink)}svg .dim{fill:var(--dim)}
table{border-collapse:collapse;font-variant-numeric:tabular-nums}th{text-align:left;color:var(--dim);font-weight:normal}
h2+div td,th{white-space:nowrap}td,th{padding:.15rem 1.2rem .15rem 0;border-bottom:1px solid var(--line);vertical-align:top}ul{margin:.4rem 0;padding-left:1.2rem}
.s0{fill:var(--s0)}.s1{fill:var(--s1)}.s2{fill:var(--s2)}.s3{fill:var(--s3)}.s4{fill:var(--s4)}.s5{fill:var(--s5)}
.s6{fill:var(--s6)}.s7{fill:var(--s7)}.hold{fill:var(--hold)}.axis{fill:var(--line)}
.late{fill:none;stroke:var(--bad);stroke-width:2}
)";

}  // namespace statectl::trace

#endif
