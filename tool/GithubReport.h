#pragma once

#include "tool/Report.h"

namespace tool {

/// The findings as commands of GitHub's workflows, which make annotations of them:
///
///     ::error file=live.m3u8,line=3,col=29,endColumn=30,title=variant-bandwidth-zero::expected a BANDWIDTH above 0
///
/// That the models reject a playlist is a notice. Neither a path nor a playlist can end such a command or begin another one. Inputs that cannot be read are annotations too.
class GithubReport : public Report {
  public:
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override;
};

}  // namespace tool
