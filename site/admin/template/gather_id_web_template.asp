<%
' 编号采集网站规则：页面按请求的 id 选用其中一条（由 gather_id_web_update.asp 生成）
Select Case id
[osearch]gather_web_list[/osearch]End Select
%>
