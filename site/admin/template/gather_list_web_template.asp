<%
' 列表采集规则，由 gather_list_web_update.asp 生成，请勿手工修改。
Select Case ID
[osearch]gather_web_list[/osearch]
End Select
%>
